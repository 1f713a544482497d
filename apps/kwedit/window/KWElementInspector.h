#pragma once

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/window/KWInspector.h>

#include <functional>
#include <memory>
#include <vector>

class KWElementChannelsView;
class QLineEdit;
class QSlider;

/// Name, content and channels of the selected elements. Of several, a field shows what they have in
/// common, and an edit changes them all as one step. The document must outlive it.
class KWElementInspector : public KWInspector {
    Q_OBJECT

  public:
    explicit KWElementInspector(KWEditDocument& document, QWidget* parent = nullptr);
    ~KWElementInspector() override;

    using Elements = std::vector<std::shared_ptr<KWElement>>;
    const Elements& elements() const { return _elements; }
    /// Those that leave the document leave the inspector.
    void setElements(const Elements& elements);
    KWElementChannelsView& channelsView() const { return *_channels; }

    /// Asks for a picture or a movie, starting in a folder; "" for none. A file dialog at first.
    using FileChooser = std::function<QString(QWidget* parent, const QString& folder)>;
    void setFileChooser(FileChooser chooser) { _chooseFile = std::move(chooser); }
    /// The filter for file dialogs.
    static QString fileFilter();
    /// How a file is named in a document: relative where it lies below the document's folder.
    static QString contentPath(const KWEditDocument& document, const QString& file);

    /// What a shape is called in the window.
    static QString shapeTitle(const QString& shape);
    static QIcon shapeIcon(const QString& shape, const QColor& color);

  private:
    using Change = std::function<void(KWSpriteContent&)>;
    void makeNameRows();
    void makeContentRows();
    void makeLookRows();
    void follow();
    void followContent();
    void prune();
    void change(const QString& name, const Change& change);
    void rename();
    void contentChosen(int index);
    void chooseFile();
    void setFile(const QString& file);
    void dragShadow(int percent);

    QPointer<KWEditDocument> _document;
    Elements _elements;
    FileChooser _chooseFile;
    bool _isFollowing = false;

    QLabel* _nothing;
    QLineEdit* _name = nullptr;
    QComboBox* _content = nullptr;
    KWElidedLabel* _file = nullptr;
    KWValueField* _width = nullptr;
    KWValueField* _height = nullptr;
    KWColorWell* _color = nullptr;
    KWColorWell* _color2 = nullptr;
    KWValueField* _pivotX = nullptr;
    KWValueField* _pivotY = nullptr;
    QSlider* _shadow = nullptr;
    QLabel* _shadowValue = nullptr;
    std::unique_ptr<KWEditDocument::Step> _shadowStep; ///< while the slider is dragged
    QComboBox* _blend = nullptr;
    QCheckBox* _loop = nullptr;
    KWElementChannelsView* _channels = nullptr;
    QWidget* _nameRow = nullptr;
    QWidget* _fileRow = nullptr;
    QWidget* _loopRow = nullptr;
    QWidget* _channelsTitle = nullptr;
    std::vector<QWidget*> _contentRows; ///< of what is no stage
    std::vector<QWidget*> _lookRows;    ///< of what shows something
};
