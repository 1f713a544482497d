#include <apps/kwedit/window/KWEditSession.h>

#include <algorithm>

KWEditSession::KWEditSession(QObject* parent) : QObject(parent) {
    _later.setSingleShot(true);
    _later.setInterval(0);
    connect(&_later, &QTimer::timeout, this, &KWEditSession::refresh);
    connect(&_document, &KWEditDocument::replaced, this, &KWEditSession::documentReplaced);
    connect(&_document, &KWEditDocument::structureChanged, this, [this] {
        _isStructureDue = true;
        schedule();
    });
    connect(&_document, &KWEditDocument::channelChanged, this, &KWEditSession::schedule);
    connect(&_transport, &KWEditTransport::timeChanged, this, &KWEditSession::updateChannels);
    documentReplaced();
}

KWEditSession::~KWEditSession() = default;

void KWEditSession::schedule() {
    if (!_later.isActive())
        _later.start();
}

void KWEditSession::refresh() {
    _later.stop();
    if (std::exchange(_isStructureDue, false))
        structureChanged();
    updateChannels();
}

void KWEditSession::documentReplaced() {
    _later.stop();
    _isStructureDue = false;
    _selected.clear();
    _transport.pause();
    _transport.gotoBeginning();
    listElements();
    updateChannels();
    Q_EMIT selectionChanged();
}

void KWEditSession::structureChanged() {
    listElements();
    dropSelectionThatIsGone();
}

void KWEditSession::listElements() {
    KWArrayController::Objects objects;
    _channels.clear();
    for (auto& element : _document.channelElements())
        objects.push_back(std::move(element));
    for (const auto& place : _document.model().channels())
        _channels.push_back(place.channel);
    if (objects != _elements.arrangedObjects())
        _elements.setContent(std::move(objects));
    Q_EMIT elementsChanged();
}

void KWEditSession::dropSelectionThatIsGone() {
    const auto& objects = _elements.arrangedObjects();
    const auto isGone = [&objects](const std::shared_ptr<KWElement>& element) {
        return std::find(objects.begin(), objects.end(), element) == objects.end();
    };
    if (std::erase_if(_selected, isGone) > 0)
        Q_EMIT selectionChanged();
}

void KWEditSession::selectElements(std::vector<std::shared_ptr<KWElement>> elements) {
    std::erase(elements, nullptr);
    if (elements == _selected)
        return;
    _selected = std::move(elements);
    Q_EMIT selectionChanged();
}

void KWEditSession::selectElement(const std::shared_ptr<KWElement>& element) {
    selectElements(element ? std::vector{element} : std::vector<std::shared_ptr<KWElement>>());
}

bool KWEditSession::isGestureActive() const {
    return std::any_of(_gestureQuestions.begin(), _gestureQuestions.end(),
                       [](const auto& question) { return question(); });
}

void KWEditSession::addGestureQuestion(std::function<bool()> question) {
    _gestureQuestions.push_back(std::move(question));
}

/// A channel that cannot be evaluated keeps what it had; whoever shows it says why.
void KWEditSession::updateChannels() {
    const KWTime time = _transport.time();
    for (const auto& channel : _channels) {
        try {
            channel->updateForTime(time);
        } catch (const std::exception&) {
            continue;
        }
    }
    Q_EMIT channelsUpdated();
}
