#include <KWBase/KWChannel.h>
#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWDocumentInspector.h>

#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QSpinBox>
#include <algorithm>
#include <cmath>

namespace {

constexpr int largestSide = 16384;
constexpr qint64 mostPixels = qint64{1} << 26;

} // namespace

KWDocumentInspector::KWDocumentInspector(KWEditDocument& document, QWidget* parent)
    : KWInspector(parent), _document(&document), _file(new KWElidedLabel), _form(new QLabel) {
    setObjectName(QStringLiteral("documentInspector"));
    _file->setObjectName(QStringLiteral("file"));
    _form->setObjectName(QStringLiteral("form"));
    addRow(tr("File"), {_file});
    addRow(tr("Form"), {_form});
    makeStageRows();
    connect(&document, &KWEditDocument::replaced, this, &KWDocumentInspector::follow);
    connect(&document, &KWEditDocument::fileChanged, this, &KWDocumentInspector::follow);
    connect(&document, &KWEditDocument::structureChanged, this, &KWDocumentInspector::follow);
    follow();
}

QString KWDocumentInspector::formTitle(KWDocument::Form form) {
    switch (form) {
    case KWDocument::Form::xml:
        return tr("Keyed archive, XML");
    case KWDocument::Form::sequential:
        return tr("Sequential archive");
    default:
        return tr("Keyed archive, binary");
    }
}

void KWDocumentInspector::makeStageRows() {
    _width = spinBox(tr("Width"), tr("The width of the stage in pixels"), 1, largestSide);
    _width->setObjectName(QStringLiteral("stageWidth"));
    _height = spinBox(tr("Height"), tr("The height of the stage in pixels"), 1, largestSide);
    _height->setObjectName(QStringLiteral("stageHeight"));
    auto* const times = new QLabel(QStringLiteral("×"));
    times->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    addRow(tr("Stage"), {_width, times, _height});
    _scale = valueField(tr("Scale"), tr("Pixels of the stage for a meter"), KWUnitTypeNone);
    _scale->setObjectName(QStringLiteral("scale"));
    auto* const unit = new QLabel(tr("px/m"));
    unit->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    addRow(tr("Scale"), {_scale, unit});
    _distance = valueField(tr("Distance"),
                           tr("How far the camera is from the sprites, for panning and tilting"),
                           KWUnitTypeLength);
    _distance->setObjectName(QStringLiteral("distance"));
    addRow(tr("Camera"), {_distance});
    _backdrop = comboBox(tr("What is behind the sprites"));
    _backdrop->setObjectName(QStringLiteral("backdrop"));
    _backdrop->addItems({tr("Transparent"), tr("Plain color"), tr("Room")});
    addRow(tr("Backdrop"), {_backdrop});
    _color = colorWell(tr("Backdrop color"), tr("The color, or that of the wall at its top"));
    _color->setObjectName(QStringLiteral("color"));
    _color2 = colorWell(tr("Wall color"), tr("The color of the wall at its foot"));
    _color2->setObjectName(QStringLiteral("color2"));
    _floor = colorWell(tr("Floor color"), tr("The color of the floor"));
    _floor->setObjectName(QStringLiteral("floor"));
    _colorRow = addRow(tr("Colors"), {_color, _color2, _floor});

    const auto changeSize = [this] {
        change(tr("Change Stage Size"), [this](KWStage& stage) {
            const qint64 width = _width->value();
            stage.size =
                QSize(_width->value(),
                      static_cast<int>(std::min<qint64>(_height->value(), mostPixels / width)));
        });
    };
    connect(_width, &QSpinBox::valueChanged, this, changeSize);
    connect(_height, &QSpinBox::valueChanged, this, changeSize);
    connect(_scale, &KWValueField::valueEdited, this, [this](float scale) {
        change(tr("Change Scale"), [scale](KWStage& stage) {
            stage.scale = std::max(static_cast<double>(scale), 1e-3);
        });
    });
    connect(_distance, &KWValueField::valueEdited, this, [this](float distance) {
        change(tr("Change Camera Distance"), [distance](KWStage& stage) {
            stage.distance = std::max(static_cast<double>(distance), 0.0);
        });
    });
    connect(_backdrop, &QComboBox::currentIndexChanged, this, [this](int index) {
        change(tr("Change Backdrop"), [index](KWStage& stage) {
            stage.backdrop = static_cast<KWStage::Backdrop>(std::clamp(index, 0, 2));
        });
    });
    for (const auto& [well, field] :
         {std::pair{_color, &KWStage::color}, std::pair{_color2, &KWStage::color2},
          std::pair{_floor, &KWStage::floor}})
        connect(well, &KWColorWell::colorEdited, this, [this, field = field](const QColor& color) {
            change(tr("Change Backdrop Color"),
                   [field, color](KWStage& stage) { stage.*field = color; });
        });
}

void KWDocumentInspector::change(const QString& name, const std::function<void(KWStage&)>& change) {
    if (_isFollowing)
        return;
    KWStage stage = _document->stage();
    change(stage);
    if (const auto element = _document->stageElement())
        _document->setAttributes(element, stage.appliedTo(*element), name);
    else
        _document->setStage(stage);
    // What was out of bounds is not what was typed.
    follow();
}

void KWDocumentInspector::follow() {
    _isFollowing = true;
    const QString path = _document->filePath();
    _file->setFullText(path.isEmpty() ? tr("Not saved yet") : QDir::toNativeSeparators(path));
    _form->setText(_document->isReadOnly() ? tr("%1, read-only").arg(formTitle(_document->form()))
                                           : formTitle(_document->form()));
    const KWStage stage = _document->stage();
    _width->setValue(stage.size.width());
    _height->setValue(stage.size.height());
    _scale->setValue(static_cast<float>(stage.scale));
    _distance->setValue(static_cast<float>(stage.distance));
    _backdrop->setCurrentIndex(static_cast<int>(stage.backdrop));
    _color->setColor(stage.color);
    _color2->setColor(stage.color2);
    _floor->setColor(stage.floor);
    const bool isRoom = stage.backdrop == KWStage::Backdrop::room;
    setRowVisible(_colorRow, stage.backdrop != KWStage::Backdrop::none);
    _color2->setVisible(isRoom);
    _floor->setVisible(isRoom);
    const bool canChange = _document->takesElements() || _document->stageElement();
    for (QWidget* const field : std::initializer_list<QWidget*>{_width, _height, _scale, _distance,
                                                                _backdrop, _color, _color2, _floor})
        field->setEnabled(canChange);
    _isFollowing = false;
}
