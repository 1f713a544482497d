#pragma once

#include <KWBase/KWChannelEditorController.h>
#include <KWDesktop/KWChannelUndoRecorder.h>

#include <apps/kwedit/window/KWEditSession.h>

#include <QWidget>

class KWChannelView;
class KWChannelViewNavigator;
class KWKeyCommands;
class KWKeyEntryPanel;
class QLabel;

/// The curves of the document: the channel editor's panel with what kwedit adds to it - navigation,
/// commands for keys, exact entry, undo - in a pane of the window or in a window of its own.
class KWEditCurvesPane : public QWidget {
    Q_OBJECT

  public:
    /// The session must outlive this.
    explicit KWEditCurvesPane(KWEditSession& session, QWidget* parent = nullptr);
    ~KWEditCurvesPane() override;

    KWChannelView& view() const { return *_view; }
    QTreeView& outline() const { return *_outline; }
    KWChannelEditorController& editor() { return _editor; }
    KWChannelViewNavigator& navigator() const { return *_navigator; }
    KWKeyCommands& keys() const { return *_keys; }

    /// Null for none.
    std::shared_ptr<KWChannel> channel() const { return _editor.channelBeingEdited(); }
    /// The next curve that is edited is framed, as that of a document just opened.
    void prepareForNewDocument();
    /// The first channel that has a curve; nothing happens when there is none.
    void editFirstCurve();
    /// Null for none. Nothing happens for one that is in no element.
    void edit(const std::shared_ptr<KWChannel>& channel);
    /// Draws the curves of the other channels of the edited one's element as well.
    void showAllCurvesOfTheElement();
    void hideOtherCurves();

    /// Sets a key where the curve is at the current time. False for a channel without keys.
    bool setKeyAtCurrentTime();
    /// Goes to the field for the selected keys' time.
    void enterExactly();
    /// The time of the nearest key before, or behind, the current time; none without one.
    std::optional<float> keyBefore(float time) const;
    std::optional<float> keyAfter(float time) const;

    bool isFloating() const { return isWindow() && parentWidget() != nullptr; }
    /// In a window of its own beside `owner`; or taken out of it, without a parent, for whoever
    /// puts it back.
    void setFloating(bool isFloating, QWidget* owner);

  Q_SIGNALS:
    void channelChanged(const std::shared_ptr<KWChannel>& channel);
    /// The user has closed the window that this floats in.
    void closed();
    void message(const QString& text);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void makeHint();
    void updateHint();
    void fitRows();
    void followTime();
    void followRate(double rate);
    void followStructure();
    void followChannel();

    KWEditSession& _session;
    KWChannelEditorController _editor;
    KWChannelUndoRecorder _editorUndo{_editor};
    KWChannelView* _view = nullptr;
    QTreeView* _outline = nullptr;
    KWChannelViewNavigator* _navigator = nullptr;
    KWKeyCommands* _keys = nullptr;
    KWKeyEntryPanel* _keyEntry = nullptr;
    QLabel* _hint = nullptr; ///< in place of a curve
    std::weak_ptr<KWChannel> _shown;
    QByteArray _floatingGeometry; ///< of the window of its own, when it had one
};
