#include <KWBase/KWStackedView.h>

#include <apps/kwedit/window/KWDocumentInspector.h>
#include <apps/kwedit/window/KWElementInspector.h>
#include <apps/kwedit/window/KWInspectorPanel.h>
#include <apps/kwedit/window/KWTransportInspector.h>
#include <apps/kwedit/window/KWUnitsInspector.h>

#include <QDataStream>
#include <QMap>

namespace {

constexpr quint32 stateMark = 0x4b574950;
constexpr quint32 stateVersion = 1;

} // namespace

KWInspectorPanel::KWInspectorPanel(KWEditDocument& document, KWEditTransport& transport,
                                   KWEditStageTiming& timing, QWidget* parent)
    : QScrollArea(parent), _stack(new KWStackedView), _element(new KWElementInspector(document)),
      _document(new KWDocumentInspector(document)),
      _transport(new KWTransportInspector(document, transport, timing)),
      _units(new KWUnitsInspector) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setAccessibleName(tr("Inspectors"));
    for (QWidget* const inspector :
         std::initializer_list<QWidget*>{_element, _document, _transport, _units})
        inspector->resize(280, inspector->sizeHint().height());
    _stack->addViewsLabels({_element, _document, _transport, _units},
                           {tr("Element"), tr("Document"), tr("Transport"), tr("Units")});
    setWidget(_stack);
    connect(_stack, &KWStackedView::collapsedChanged, this, &KWInspectorPanel::stateChanged);
}

QByteArray KWInspectorPanel::saveState() const {
    QMap<QString, bool> collapsed;
    for (const auto& item : _stack->items())
        collapsed.insert(item->contentView()->objectName(), item->isCollapsed());
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << stateMark << stateVersion << collapsed;
    return state;
}

bool KWInspectorPanel::restoreState(const QByteArray& state) {
    QDataStream stream(state);
    stream.setVersion(QDataStream::Qt_6_0);
    quint32 mark = 0;
    quint32 version = 0;
    stream >> mark >> version;
    if (mark != stateMark || version != stateVersion)
        return false;
    QMap<QString, bool> collapsed;
    stream >> collapsed;
    if (stream.status() != QDataStream::Ok)
        return false;
    for (const auto& item : _stack->items()) {
        const auto found = collapsed.constFind(item->contentView()->objectName());
        if (found != collapsed.constEnd() && *found != item->isCollapsed())
            item->setCollapsed(*found);
    }
    return true;
}
