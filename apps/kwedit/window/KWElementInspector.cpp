#include <KWBase/KWChannel.h>
#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/KWSpriteShapes.h>
#include <apps/kwedit/window/KWEditIcons.h>
#include <apps/kwedit/window/KWElementChannelsView.h>
#include <apps/kwedit/window/KWElementInspector.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLineEdit>
#include <QPainter>
#include <QSlider>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

using Kind = KWSpriteContent::Kind;

constexpr QPainter::CompositionMode blends[] = {
    QPainter::CompositionMode_SourceOver, QPainter::CompositionMode_Plus,
    QPainter::CompositionMode_Multiply, QPainter::CompositionMode_Screen};

/// The value that all have; nothing where they differ.
template <class Get>
auto common(const std::vector<KWSpriteContent>& contents, Get get)
    -> std::optional<decltype(get(contents.front()))> {
    if (contents.empty())
        return std::nullopt;
    const auto first = get(contents.front());
    for (const KWSpriteContent& each : contents)
        if (!(get(each) == first))
            return std::nullopt;
    return first;
}

/// Not a number is what no text that is typed can be the same as. `zero` is what stands for 0, in
/// place of the number where it is not empty.
void showValue(KWValueField& field, const std::optional<double>& value, const QString& zero = {}) {
    if (field.isModified() && field.hasFocus())
        return;
    field.setValue(value ? static_cast<float>(*value) : std::numeric_limits<float>::quiet_NaN());
    const bool isWord = value == 0.0 && !zero.isEmpty();
    field.setPlaceholderText(!value ? KWElementInspector::tr("Mixed") : isWord ? zero : QString());
    if (value && !isWord)
        return;
    field.setText(QString());
    field.setModified(false);
}

} // namespace

KWElementInspector::KWElementInspector(KWEditDocument& document, QWidget* parent)
    : KWInspector(parent), _document(&document), _nothing(new QLabel(tr("Nothing selected"))) {
    setObjectName(QStringLiteral("elementInspector"));
    _nothing->setForegroundRole(QPalette::PlaceholderText);
    _nothing->setAlignment(Qt::AlignCenter);
    addWide(_nothing);
    makeNameRows();
    makeContentRows();
    makeLookRows();
    auto* const title = new QLabel(tr("Channels"));
    _channels = new KWElementChannelsView(document);
    title->setBuddy(_channels);
    _channelsTitle = title;
    addWide(title);
    addWide(_channels);
    _chooseFile = [](QWidget* owner, const QString& folder) {
        return QFileDialog::getOpenFileName(owner, tr("Choose a Picture or Movie"), folder,
                                            fileFilter());
    };
    connect(&document, &KWEditDocument::replaced, this, [this] { setElements({}); });
    connect(&document, &KWEditDocument::structureChanged, this, &KWElementInspector::follow);
    follow();
}

KWElementInspector::~KWElementInspector() = default;

QString KWElementInspector::fileFilter() {
    return tr("Pictures and movies") +
           QStringLiteral(" (*.png *.jpg *.jpeg *.gif *.bmp *.webp *.tif *.tiff *.svg *.ppm *.pgm "
                          "*.mp4 *.m4v *.mov *.avi *.mkv *.webm *.mpg *.mpeg *.ogv);;") +
           tr("All files") + QStringLiteral(" (*)");
}

QString KWElementInspector::contentPath(const KWEditDocument& document, const QString& file) {
    const QString absolute = QFileInfo(file).absoluteFilePath();
    if (document.filePath().isEmpty())
        return absolute;
    const QString relative = QDir(document.folder()).relativeFilePath(absolute);
    return relative.startsWith(QLatin1String("..")) ? absolute : relative;
}

QString KWElementInspector::shapeTitle(const QString& shape) {
    const std::pair<const char*, QString> titles[] = {
        {"rectangle", tr("Rectangle")}, {"rounded", tr("Rounded rectangle")},
        {"ellipse", tr("Ellipse")},     {"triangle", tr("Triangle")},
        {"diamond", tr("Diamond")},     {"star", tr("Star")},
        {"glow", tr("Glow")},           {"ball", tr("Ball")}};
    for (const auto& [name, title] : titles)
        if (shape == QLatin1String(name))
            return title;
    return shape;
}

QIcon KWElementInspector::shapeIcon(const QString& shape, const QColor& color) {
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        QPixmap pixmap(QSize(16, 16) * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(2, 2);
        painter.scale(12, 12);
        kwDrawShape(painter, shape, color, {});
        kwDrawShapeLight(painter, shape);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

// --- The rows.

void KWElementInspector::makeNameRows() {
    _name = new QLineEdit;
    _name->setObjectName(QStringLiteral("name"));
    _name->setToolTip(tr("The name of the element"));
    _nameRow = addRow(tr("Name"), {_name});
    connect(_name, &QLineEdit::editingFinished, this, &KWElementInspector::rename);
}

void KWElementInspector::makeContentRows() {
    _content = comboBox(tr("What the element shows"));
    _content->setObjectName(QStringLiteral("content"));
    _content->addItem(tr("Nothing"), QString());
    for (const QString& shape : KWSpriteContent::shapeNames())
        _content->addItem(shapeIcon(shape, QColor(0x80, 0x90, 0xa8)), shapeTitle(shape), shape);
    _content->insertSeparator(_content->count());
    _content->addItem(kwEditIcon(KWEditIcon::picture, _content), tr("Picture or movie…"),
                      QStringLiteral("file:"));
    _contentRows.push_back(addRow(tr("Content"), {_content}));
    connect(_content, &QComboBox::activated, this, &KWElementInspector::contentChosen);

    _file = new KWElidedLabel;
    _file->setObjectName(QStringLiteral("file"));
    auto* const choose = new QToolButton;
    choose->setObjectName(QStringLiteral("choose"));
    choose->setIcon(kwEditIcon(KWEditIcon::open, choose));
    choose->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    choose->setAccessibleName(tr("Choose a File"));
    choose->setToolTip(tr("Choose another picture or movie"));
    _fileRow = addRow(tr("File"), {_file, choose});
    connect(choose, &QToolButton::clicked, this, &KWElementInspector::chooseFile);
}

void KWElementInspector::makeLookRows() {
    const QString sizeTip = tr("In proportion to the other one, or of natural size, where it is 0");
    _width = valueField(tr("Width"), sizeTip, KWUnitTypeLength);
    _width->setObjectName(QStringLiteral("width"));
    _height = valueField(tr("Height"), sizeTip, KWUnitTypeLength);
    _height->setObjectName(QStringLiteral("height"));
    auto* const times = new QLabel(QStringLiteral("×"));
    times->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    _lookRows.push_back(addRow(tr("Size"), {_width, times, _height}));
    _color = colorWell(tr("Color"), tr("The color of the shape"));
    _color->setObjectName(QStringLiteral("color"));
    _color2 = colorWell(tr("Second color"), tr("The second color of the shape, where it has one"));
    _color2->setObjectName(QStringLiteral("color2"));
    _lookRows.push_back(addRow(tr("Colors"), {_color, _color2}));
    _pivotX = valueField(tr("Pivot x"), tr("What it turns about: 0 at the left, 1 at the right"),
                         KWUnitTypeNone);
    _pivotX->setObjectName(QStringLiteral("pivotX"));
    _pivotY = valueField(tr("Pivot y"), tr("What it turns about: 0 at the top, 1 at the bottom"),
                         KWUnitTypeNone);
    _pivotY->setObjectName(QStringLiteral("pivotY"));
    _lookRows.push_back(addRow(tr("Pivot"), {_pivotX, _pivotY}));
    _shadow = new QSlider(Qt::Horizontal);
    _shadow->setObjectName(QStringLiteral("shadow"));
    _shadow->setRange(0, 100);
    _shadow->setPageStep(10);
    _shadow->setToolTip(tr("How dark a shadow it throws on the ground"));
    _shadowValue = new QLabel;
    _shadowValue->setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("100 %")) + 2);
    _shadowValue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _lookRows.push_back(addRow(tr("Shadow"), {_shadow, _shadowValue}));
    _blend = comboBox(tr("How it covers what is behind it"));
    _blend->setObjectName(QStringLiteral("blend"));
    _blend->addItems({tr("Normal"), tr("Add"), tr("Multiply"), tr("Screen")});
    _lookRows.push_back(addRow(tr("Blending"), {_blend}));
    _loop = new QCheckBox(tr("Loop movie"));
    _loop->setObjectName(QStringLiteral("loop"));
    _loop->setToolTip(tr("The movie begins again at its end"));
    _loopRow = addRow(QString(), {_loop});

    const auto changeSize = [this] {
        const auto positive = [](const KWValueField* field) {
            return std::max(0.0, static_cast<double>(field->value()));
        };
        const QObject* const edited = sender();
        change(tr("Change Size"), [=, this](KWSpriteContent& content) {
            (edited == _width ? content.width : content.height) =
                positive(edited == _width ? _width : _height);
        });
    };
    connect(_width, &KWValueField::valueEdited, this, changeSize);
    connect(_height, &KWValueField::valueEdited, this, changeSize);
    connect(_color, &KWColorWell::colorEdited, this, [this](const QColor& color) {
        change(tr("Change Color"), [color](KWSpriteContent& content) { content.color = color; });
    });
    connect(_color2, &KWColorWell::colorEdited, this, [this](const QColor& color) {
        change(tr("Change Color"), [color](KWSpriteContent& content) { content.color2 = color; });
    });
    connect(_pivotX, &KWValueField::valueEdited, this, [this](float x) {
        change(tr("Change Pivot"),
               [x](KWSpriteContent& content) { content.pivot.setX(static_cast<double>(x)); });
    });
    connect(_pivotY, &KWValueField::valueEdited, this, [this](float y) {
        change(tr("Change Pivot"),
               [y](KWSpriteContent& content) { content.pivot.setY(static_cast<double>(y)); });
    });
    connect(_shadow, &QSlider::sliderPressed, this, [this] {
        _shadowStep = std::make_unique<KWEditDocument::Step>(*_document, tr("Change Shadow"));
    });
    connect(_shadow, &QSlider::sliderReleased, this, [this] { _shadowStep.reset(); });
    connect(_shadow, &QSlider::valueChanged, this, &KWElementInspector::dragShadow);
    connect(_blend, &QComboBox::activated, this, [this](int index) {
        change(tr("Change Blending"),
               [index](KWSpriteContent& content) { content.blend = blends[index]; });
    });
    connect(_loop, &QCheckBox::clicked, this, [this](bool isLooping) {
        change(tr("Change Looping"),
               [isLooping](KWSpriteContent& content) { content.isLooping = isLooping; });
    });
}

// --- Following.

void KWElementInspector::setElements(const Elements& elements) {
    if (elements == _elements)
        return;
    // What is being typed belongs to those from before.
    if (QWidget* const field = focusWidget())
        if (auto* const edit = qobject_cast<KWValueField*>(field))
            edit->commit();
    _shadowStep.reset();
    _elements = elements;
    std::erase(_elements, nullptr);
    follow();
}

void KWElementInspector::prune() {
    std::erase_if(_elements, [this](const std::shared_ptr<KWElement>& element) {
        const auto& all = _document->model().elements();
        return std::none_of(all.begin(), all.end(),
                            [&](const auto& each) { return each.object == element; });
    });
}

void KWElementInspector::follow() {
    prune();
    _isFollowing = true;
    const bool isOne = _elements.size() == 1;
    const bool isAny = !_elements.empty();
    const bool hasStage = std::any_of(_elements.begin(), _elements.end(),
                                      [](const auto& each) { return KWStage::isStage(*each); });
    _nothing->setVisible(!isAny);
    setRowVisible(_nameRow, isAny);
    _name->setEnabled(isOne);
    if (!_name->isModified() || !_name->hasFocus()) {
        _name->setText(isOne ? QString::fromStdString(_elements.front()->name())
                             : tr("%1 elements").arg(_elements.size()));
        _name->setModified(false);
    }
    for (QWidget* const row : _contentRows)
        setRowVisible(row, isAny && !hasStage);
    if (isAny && !hasStage)
        followContent();
    else {
        for (QWidget* const row : _lookRows)
            setRowVisible(row, false);
        setRowVisible(_fileRow, false);
        setRowVisible(_loopRow, false);
    }
    _channelsTitle->setVisible(isOne);
    _channels->setVisible(isOne);
    _channels->setElement(isOne ? _elements.front() : nullptr);
    _isFollowing = false;
}

void KWElementInspector::followContent() {
    std::vector<KWSpriteContent> contents;
    for (const auto& element : _elements)
        contents.push_back(KWSpriteContent::of(*element));
    const auto kind = common(contents, [](const auto& each) { return each.kind; });
    const auto shape = common(contents, [](const auto& each) { return each.shape; });
    const bool showsFiles = kind == Kind::file;
    const bool showsAny = std::all_of(contents.begin(), contents.end(),
                                      [](const auto& each) { return each.kind != Kind::none; });
    const QString key = showsFiles ? QStringLiteral("file:") : shape.value_or(QString());
    _content->setCurrentIndex(kind && (showsFiles || shape) ? _content->findData(key) : -1);
    _content->setPlaceholderText(tr("Mixed"));
    const auto file = common(contents, [](const auto& each) { return each.file; });
    _file->setFullText(file ? QDir::toNativeSeparators(*file) : tr("Mixed"));
    setRowVisible(_fileRow, showsFiles);
    setRowVisible(_loopRow, showsFiles);
    for (QWidget* const row : _lookRows)
        setRowVisible(row, showsAny);

    const QString natural = tr("Natural");
    showValue(*_width, common(contents, [](const auto& each) { return each.width; }), natural);
    showValue(*_height, common(contents, [](const auto& each) { return each.height; }), natural);
    showValue(*_pivotX, common(contents, [](const auto& each) { return each.pivot.x(); }));
    showValue(*_pivotY, common(contents, [](const auto& each) { return each.pivot.y(); }));
    _color->setColor(
        common(contents, [](const auto& each) { return each.color; }).value_or(QColor()));
    const auto second = common(contents, [](const auto& each) {
        return each.color2.isValid() ? each.color2 : each.color.darker(135);
    });
    _color2->setColor(second.value_or(QColor()));
    _color2->setVisible(kind == Kind::shape && shape == QStringLiteral("ball"));
    setRowVisible(_lookRows[1], showsAny && !showsFiles);
    const auto shadow = common(contents, [](const auto& each) { return each.shadow; });
    if (!_shadow->isSliderDown())
        _shadow->setValue(static_cast<int>(std::lround(100 * shadow.value_or(0))));
    _shadowValue->setText(shadow ? tr("%1 %").arg(std::lround(100 * *shadow)) : tr("Mixed"));
    const auto blend = common(contents, [](const auto& each) { return each.blend; });
    const auto* const found =
        blend ? std::find(std::begin(blends), std::end(blends), *blend) : std::end(blends);
    _blend->setCurrentIndex(found != std::end(blends) ? static_cast<int>(found - std::begin(blends))
                                                      : -1);
    _blend->setPlaceholderText(tr("Mixed"));
    const auto loop = common(contents, [](const auto& each) { return each.isLooping; });
    _loop->setCheckState(!loop ? Qt::PartiallyChecked : *loop ? Qt::Checked : Qt::Unchecked);
}

// --- Editing.

void KWElementInspector::change(const QString& name, const Change& change) {
    if (_isFollowing || _elements.empty())
        return;
    {
        const KWEditDocument::Step step(*_document, name);
        const Elements changed = _elements;
        for (const auto& element : changed) {
            KWSpriteContent content = KWSpriteContent::of(*element);
            change(content);
            _document->setAttributes(element, content.appliedTo(*element), name);
        }
    }
    follow();
}

void KWElementInspector::rename() {
    if (_elements.size() != 1 || !_name->isModified())
        return;
    const QString name = _name->text();
    _name->setModified(false);
    if (name.trimmed().isEmpty())
        return follow();
    _document->renameElement(_elements.front(), name);
}

void KWElementInspector::contentChosen(int index) {
    const QString key = _content->itemData(index).toString();
    if (key == QLatin1String("file:"))
        return chooseFile();
    change(tr("Change Content"), [&](KWSpriteContent& content) {
        content.kind = key.isEmpty() ? Kind::none : Kind::shape;
        content.shape = key;
        content.file.clear();
    });
}

void KWElementInspector::chooseFile() {
    const QPointer<KWElementInspector> self(this);
    const QString file = _chooseFile(this, _document->folder());
    if (!self)
        return;
    if (!file.isEmpty())
        setFile(file);
    else
        follow(); // the menu shows what it did
}

void KWElementInspector::setFile(const QString& file) {
    const QString path = contentPath(*_document, file);
    change(tr("Change Content"), [&](KWSpriteContent& content) {
        content.kind = Kind::file;
        content.file = path;
        content.shape.clear();
    });
}

void KWElementInspector::dragShadow(int percent) {
    change(tr("Change Shadow"),
           [percent](KWSpriteContent& content) { content.shadow = percent / 100.0; });
}
