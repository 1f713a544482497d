#pragma once

#include <KWDesktop/KWArrayController.h>

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWEditTransport.h>
#include <apps/kwedit/window/KWEditStageTiming.h>

#include <QObject>
#include <QTimer>
#include <memory>
#include <vector>

/// What the panes of one window have in common: the document, the time it is shown at, the list of
/// its elements, and which of them are selected. No widget.
///
/// Every channel's kept value is brought up to the time when the time changes and, once in the next
/// pass of the event loop, when channels have changed.
class KWEditSession : public QObject {
    Q_OBJECT

  public:
    explicit KWEditSession(QObject* parent = nullptr);
    ~KWEditSession() override;

    KWEditDocument& document() { return _document; }
    const KWEditDocument& document() const { return _document; }
    KWEditTransport& transport() { return _transport; }
    KWEditStageTiming& timing() { return _timing; }
    /// The elements that have channels to show, each a KWChannelElement, in the document's order:
    /// those of the document, and for channels of other programs' objects a stand-in.
    KWArrayController& elements() { return _elements; }

    /// In the order of selection; never one that has left the document.
    const std::vector<std::shared_ptr<KWElement>>& selectedElements() const { return _selected; }
    void selectElements(std::vector<std::shared_ptr<KWElement>> elements);
    void selectElement(const std::shared_ptr<KWElement>& element);

    /// Whether keys or a pane's content are being dragged: nothing is undone meanwhile.
    bool isGestureActive() const;
    /// Asked by isGestureActive(); each pane that has gestures adds its own question.
    void addGestureQuestion(std::function<bool()> question);

    /// Does at once what is due for the next pass.
    void refresh();

  Q_SIGNALS:
    /// Which elements there are, or what they are called.
    void elementsChanged();
    void selectionChanged();
    /// The kept values are those of the transport's time.
    void channelsUpdated();

  private:
    void documentReplaced();
    void structureChanged();
    void listElements();
    void dropSelectionThatIsGone();
    void schedule();
    void updateChannels();

    KWEditDocument _document;
    KWEditTransport _transport;
    KWEditStageTiming _timing{_document, _transport};
    KWArrayController _elements;
    std::vector<std::shared_ptr<KWElement>> _selected;
    std::vector<std::shared_ptr<KWChannel>> _channels;
    std::vector<std::function<bool()>> _gestureQuestions;
    QTimer _later;
    bool _isStructureDue = false;
};
