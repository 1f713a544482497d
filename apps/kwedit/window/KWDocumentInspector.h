#pragma once

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/window/KWInspector.h>

/// The document's file, and the stage: its size, scale, backdrop and colors. The document must
/// outlive it.
class KWDocumentInspector : public KWInspector {
    Q_OBJECT

  public:
    explicit KWDocumentInspector(KWEditDocument& document, QWidget* parent = nullptr);

    /// What a form is called in the window.
    static QString formTitle(KWDocument::Form form);

  private:
    void makeStageRows();
    void follow();
    void change(const QString& name, const std::function<void(KWStage&)>& change);

    QPointer<KWEditDocument> _document;
    KWElidedLabel* _file;
    QLabel* _form;
    QSpinBox* _width = nullptr;
    QSpinBox* _height = nullptr;
    KWValueField* _scale = nullptr;
    KWValueField* _distance = nullptr;
    QComboBox* _backdrop = nullptr;
    KWColorWell* _color = nullptr;
    KWColorWell* _color2 = nullptr;
    KWColorWell* _floor = nullptr;
    QWidget* _colorRow = nullptr;
    bool _isFollowing = false;
};
