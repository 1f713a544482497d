#pragma once

#include <apps/kwedit/window/KWEditStageTiming.h>

#include <QByteArray>
#include <QScrollArea>

class KWDocumentInspector;
class KWElementInspector;
class KWStackedView;
class KWTransportInspector;
class KWUnitsInspector;

/// The inspectors of a document's window one under the other, each of which can be collapsed, in a
/// column that scrolls. Document, transport and timing must outlive it.
class KWInspectorPanel : public QScrollArea {
    Q_OBJECT

  public:
    KWInspectorPanel(KWEditDocument& document, KWEditTransport& transport,
                     KWEditStageTiming& timing, QWidget* parent = nullptr);

    KWDocumentInspector& documentInspector() const { return *_document; }
    KWUnitsInspector& unitsInspector() const { return *_units; }
    KWElementInspector& elementInspector() const { return *_element; }
    KWTransportInspector& transportInspector() const { return *_transport; }
    KWStackedView& stack() const { return *_stack; }

    /// Which of them are collapsed.
    QByteArray saveState() const;
    /// False, and nothing changed, for bytes that are no such state. Inspectors that the state does
    /// not name stay as they are.
    bool restoreState(const QByteArray& state);

    QSize sizeHint() const override { return {280, 480}; }
    QSize minimumSizeHint() const override { return {250, 120}; }

  Q_SIGNALS:
    /// An inspector was collapsed or expanded.
    void stateChanged();

  private:
    KWStackedView* _stack;
    KWElementInspector* _element;
    KWDocumentInspector* _document;
    KWTransportInspector* _transport;
    KWUnitsInspector* _units;
};
