#include <KWBase/KWChannelView.h>
#include <KWBase/KWInterfaceFile.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUiLoader>
#include <QVariant>
#include <QXmlStreamReader>
#include <vector>

namespace {

constexpr qint64 largestFile = 4 * 1024 * 1024;
constexpr int deepestNesting = 200;

class Loader final : public QUiLoader {
  public:
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
        if (className != QLatin1String(KWChannelView::staticMetaObject.className()))
            return QUiLoader::createWidget(className, parent, name);
        auto* const view = new KWChannelView(parent);
        view->setObjectName(name);
        return view;
    }
};

QString nameOf(const QString& path) {
    return QFileInfo(path).fileName();
}

QString sentence(const QString& path, const QString& fault) {
    return QStringLiteral("%1: %2").arg(nameOf(path), fault);
}

/// What keeps the text from being a form; "" for nothing. The loader itself would read to any
/// depth.
QString faultInText(const QByteArray& text) {
    QXmlStreamReader reader(text);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (depth == 0 && reader.name() != QLatin1String("ui"))
                return QStringLiteral("it is no interface file, its outermost element is \"%1\"")
                    .arg(reader.name());
            if (++depth > deepestNesting)
                return QStringLiteral("line %1 is nested more than %2 deep")
                    .arg(reader.lineNumber())
                    .arg(deepestNesting);
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
    }
    if (!reader.hasError())
        return {};
    return QStringLiteral("line %1, column %2: %3")
        .arg(reader.lineNumber())
        .arg(reader.columnNumber())
        .arg(reader.errorString());
}

QWidget* findOutlet(QWidget& root, const QString& name) {
    return root.objectName() == name ? &root : root.findChild<QWidget*>(name);
}

/// Why the widget is not the outlet; "" when it is.
QString faultInOutlet(const KWOutlet& outlet, const QWidget* widget) {
    const QString name = QLatin1String(outlet.name);
    if (!widget)
        return QStringLiteral("there is no widget named \"%1\"").arg(name);
    if (!widget->metaObject()->inherits(outlet.type))
        return QStringLiteral("\"%1\" is a %2, not a %3")
            .arg(name, QLatin1String(widget->metaObject()->className()),
                 QLatin1String(outlet.type->className()));
    if (outlet.tag && KWTagOf(widget) != outlet.tag)
        return QStringLiteral("\"%1\" has no property \"tag\" of %2").arg(name).arg(*outlet.tag);
    return {};
}

} // namespace

std::optional<int> KWTagOf(const QObject* object) {
    bool isNumber = false;
    const int tag = object ? object->property("tag").toInt(&isNumber) : 0;
    return isNumber ? std::optional<int>(tag) : std::nullopt;
}

KWLoadedInterface KWLoadInterfaceFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {nullptr, sentence(path, file.errorString())};
    QByteArray text = file.read(largestFile + 1);
    if (text.size() > largestFile)
        return {nullptr, sentence(path, QStringLiteral("it is too large for an interface file"))};
    if (const QString fault = faultInText(text); !fault.isEmpty())
        return {nullptr, sentence(path, fault)};
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    Loader loader;
    // Pictures beside the file are found by their names alone.
    loader.setWorkingDirectory(QFileInfo(path).dir());
    std::unique_ptr<QWidget> root(loader.load(&buffer));
    if (!root)
        return {nullptr, sentence(path, loader.errorString())};
    return {std::move(root), {}};
}

QString KWConnectOutlets(QWidget& root, std::span<const KWOutlet> outlets, const QString& path) {
    std::vector<QWidget*> found;
    for (const KWOutlet& outlet : outlets) {
        found.push_back(findOutlet(root, QLatin1String(outlet.name)));
        if (const QString fault = faultInOutlet(outlet, found.back()); !fault.isEmpty())
            return sentence(path, fault);
    }
    for (std::size_t k = 0; k < outlets.size(); ++k)
        outlets[k].connect(found[k]);
    return {};
}
