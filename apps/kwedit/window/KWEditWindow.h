#pragma once

#include <apps/kwedit/KWRecentFiles.h>
#include <apps/kwedit/window/KWEditCommands.h>
#include <apps/kwedit/window/KWEditPanes.h>
#include <apps/kwedit/window/KWEditQuestions.h>
#include <apps/kwedit/window/KWEditSession.h>
#include <apps/kwedit/window/KWExportDialog.h>

#include <QMainWindow>
#include <QPointer>
#include <memory>

class KWEditCurvesPane;
class KWEditOutlinePane;
class KWEditStageView;
class KWHistoryPanel;
class KWInspectorPanel;
class KWKeyFramedChannel;
class KWTour;
class KWTransportBar;
class QLabel;
class QScrollArea;

/// What the windows of one program share: settings, the list of recent files, and the questions
/// they ask. Must outlive the windows.
struct KWEditSurroundings {
    QSettings& settings;
    KWRecentFiles& recentFiles;
    KWEditQuestions& questions;
    /// Opens one more window, on a document or, for "", on an empty stage.
    std::function<void(const QString& path)> openWindow;

    /// Where the copies of unsaved documents lie; "" for none.
    QString autosaveFolder() const;
};

/// The window of one document. Deletes itself when it is closed.
class KWEditWindow : public QMainWindow {
    Q_OBJECT

  public:
    explicit KWEditWindow(KWEditSurroundings& surroundings);
    ~KWEditWindow() override;

    // --- The document. What goes wrong is told to the user, and false is answered.

    bool open(const QString& path);
    bool recover(const KWEditAutosave::Leftover& leftover);
    bool save();
    bool saveAs();
    bool saveCopy();
    bool revert();
    /// Asks about unsaved changes; false when the user would rather go on.
    bool mayClose();
    /// Whether this is a new document that nothing has been done to.
    bool isUntouched() const;

    KWEditSession& session() { return _session; }
    KWEditCommands& commands() { return *_commands; }
    KWEditPanes& panes() { return *_panes; }
    KWEditCurvesPane& curves() { return *_curves; }
    KWEditOutlinePane& outline() { return *_outline; }
    KWEditStageView& stage() { return *_stage; }
    KWTransportBar& transportBar() { return *_transportBar; }

    // --- What commands do.

    void undo();
    void redo();
    void addShape(const QString& name, const QString& shape);
    std::shared_ptr<KWElement> addSprite(const QString& name, const KWSpriteContent& content);
    /// A sprite for each picture or movie, at a point of the stage in metres.
    void addFiles(const QStringList& files, const QPointF& point = {});
    void removeSelected();
    void renameSelected();
    /// By one place in the order of drawing.
    void moveSelected(int places);
    void setCurvesFloating(bool isFloating);
    KWExportDialog* showExport(KWExportDialog::Kind kind);
    KWTour* startTour();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void makePanes();
    void makeStatusBar();
    void connectFileCommands();
    void connectEditCommands();
    void connectElementCommands();
    void connectKeyCommands();
    void connectViewCommands();
    void connectPlayCommands();
    void connectHelpCommands();
    void connectSession();
    void fillRecentFiles();
    void fillShapes();
    void fillDrawings();
    void fillAppearances();
    void fillLanguages();

    void updateTitle();
    void updateCommands();
    void updateKeyCommands();
    void updateKeyTimes();
    void tell(const QString& message);
    void complain(const QString& text, const QString& reason);
    bool writeTo(const KWEditQuestions::Target& target, bool isCopy);
    bool confirmLosses(KWEditDocument::Form form);
    void openFiles(const QStringList& paths);
    void readSettings();
    void writeSettings();

    KWEditSurroundings& _around;
    KWEditSession _session;
    KWEditCommands* _commands;
    KWEditOutlinePane* _outline = nullptr;
    KWHistoryPanel* _history = nullptr;
    KWEditStageView* _stage = nullptr;
    KWTransportBar* _transportBar = nullptr;
    KWEditCurvesPane* _curves = nullptr;
    KWInspectorPanel* _inspectors = nullptr;
    KWEditPanes* _panes = nullptr;
    QLabel* _state = nullptr;
    QPointer<KWTour> _tour;
    // What the transport bar shows the keys of.
    std::weak_ptr<KWKeyFramedChannel> _markedChannel;
    std::uint64_t _markedEdits = 0;
};
