#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWSpriteChannels.h>

#include <algorithm>

// The edits of a document, each with its inverse.

namespace {

/// Where a channel stands in its element.
struct ChannelPlace {
    std::shared_ptr<KWChannelGroup> group; ///< null for none
    std::shared_ptr<KWChannelList> list;
    std::ptrdiff_t index = 0;
};

std::optional<ChannelPlace> placeOf(const KWElement& element,
                                    const std::shared_ptr<KWChannel>& channel) {
    const auto array = element.channelArray();
    std::optional<ChannelPlace> place;
    const auto look = [&](const std::shared_ptr<KWChannelGroup>& group,
                          const std::shared_ptr<KWChannelList>& list) {
        if (!list || place)
            return;
        const auto found = std::find(list->begin(), list->end(), channel);
        if (found != list->end())
            place = {group, list, found - list->begin()};
    };
    if (!array)
        return place;
    look(nullptr, array->ungroupedChannels());
    if (array->channelGroups())
        for (const auto& group : *array->channelGroups())
            if (group)
                look(group, group->channels());
    return place;
}

void putChannel(KWElement& element, const ChannelPlace& place,
                const std::shared_ptr<KWChannel>& channel) {
    const auto size = static_cast<std::ptrdiff_t>(place.list->size());
    place.list->insert(place.list->begin() + std::min(place.index, size), channel);
    channel->setChannelGroup(place.group);
    channel->setOwner(&element);
    channel->invalidate();
    element.postChannelsDidChange();
}

void takeChannel(KWElement& element, const ChannelPlace& place,
                 const std::shared_ptr<KWChannel>& channel) {
    std::erase(*place.list, channel);
    channel->setChannelGroup(nullptr);
    channel->setOwner(nullptr);
    element.postChannelsDidChange();
}

} // namespace

KWEditDocument::Step::Step(KWEditDocument& document, const QString& name)
    : _manager(document.undoManager()) {
    const bool isOutermost = _manager->groupingLevel() == 0;
    _manager->beginUndoGrouping();
    if (isOutermost)
        _manager->setActionName(name.toStdString());
}

KWEditDocument::Step::~Step() {
    if (_manager->groupingLevel() > 0)
        _manager->endUndoGrouping();
}

void KWEditDocument::perform(const QString& name, std::function<void()> change,
                             std::function<void()> inverse) {
    change();
    const auto manager = undoManager();
    manager->registerUndo(_undoTarget,
                          [this, name, change, inverse] { perform(name, inverse, change); });
    if (manager->groupingLevel() == 0)
        manager->setActionName(name.toStdString());
    if (manager->isUndoing() || manager->isRedoing())
        return; // the manager tells when the step is done
    if (manager->groupingLevel() > 0)
        managerDidChange();
}

QString KWEditDocument::undoName() const {
    return QString::fromStdString(undoManager()->undoActionName());
}

QString KWEditDocument::redoName() const {
    return QString::fromStdString(undoManager()->redoActionName());
}

std::shared_ptr<KWElement> KWEditDocument::stageElement() const {
    for (const KWDocument::Element& each : _model->elements())
        if (auto element = std::dynamic_pointer_cast<KWElement>(each.object))
            if (KWStage::isStage(*element))
                return element;
    return nullptr;
}

std::shared_ptr<KWElement> KWEditDocument::addElement(const QString& name,
                                                      const KWElement::Attributes& attributes,
                                                      std::size_t index) {
    if (!takesElements())
        return nullptr;
    const auto element = std::make_shared<KWElement>(name.toStdString());
    element->setAttributes(attributes);
    perform(
        tr("Add Element"), [this, element, index] { _model->insertElement(element, index); },
        [this, element] { _model->removeElement(element); });
    return element;
}

std::shared_ptr<KWElement> KWEditDocument::addSprite(const QString& name,
                                                     const KWSpriteContent& content) {
    using Role = KWSpriteRole;
    if (!takesElements())
        return nullptr;
    const Step step(*this, tr("Add Sprite"));
    const auto element = addElement(name, content.appliedTo(KWElement()));
    std::int32_t color = 2;
    for (const auto& [role, value, unit] :
         {std::tuple{Role::x, 0.0F, KWUnitTypeLength}, std::tuple{Role::y, 0.0F, KWUnitTypeLength},
          std::tuple{Role::rotation, 0.0F, KWUnitTypeAngle},
          std::tuple{Role::scale, 1.0F, KWUnitTypeNone},
          std::tuple{Role::opacity, 1.0F, KWUnitTypeNone}}) {
        const auto [channelName, group] = KWSpriteChannels::usualPlace(role);
        auto channel =
            channelWithNameInitialValueColor<KWKeyFramedChannel>(channelName, value, color++);
        channel->setUnitType(static_cast<std::int32_t>(unit));
        addChannel(element, channel, QString::fromStdString(group));
    }
    return element;
}

bool KWEditDocument::removeElement(const std::shared_ptr<KWElement>& element) {
    const std::size_t index = _model->removeElement(element);
    if (index == KWNotFound)
        return false;
    _model->insertElement(element, index);
    perform(
        tr("Remove Element"), [this, element] { _model->removeElement(element); },
        [this, element, index] { _model->insertElement(element, index); });
    return true;
}

bool KWEditDocument::moveElement(const std::shared_ptr<KWElement>& element, std::size_t index) {
    const std::size_t from = _model->removeElement(element);
    if (from == KWNotFound)
        return false;
    _model->insertElement(element, from);
    const std::size_t to = index > from ? index - 1 : index;
    if (to == from)
        return true;
    const auto moveTo = [this, element](std::size_t place) {
        _model->removeElement(element);
        _model->insertElement(element, place);
    };
    perform(
        tr("Move Element"), [moveTo, to] { moveTo(to); }, [moveTo, from] { moveTo(from); });
    return true;
}

void KWEditDocument::renameElement(const std::shared_ptr<KWElement>& element, const QString& name) {
    const std::string before = element->name();
    const std::string after = name.toStdString();
    if (before == after)
        return;
    // The document lists the names as well.
    const auto rename = [this, element](const std::string& to) {
        element->setName(to);
        const std::size_t index = _model->removeElement(element);
        if (index != KWNotFound)
            _model->insertElement(element, index);
    };
    perform(
        tr("Rename Element"), [rename, after] { rename(after); },
        [rename, before] { rename(before); });
}

void KWEditDocument::setAttributes(const std::shared_ptr<KWElement>& element,
                                   const KWElement::Attributes& attributes,
                                   const QString& stepName) {
    const KWElement::Attributes before = element->attributes();
    if (before == attributes)
        return;
    perform(
        stepName, [element, attributes] { element->setAttributes(attributes); },
        [element, before] { element->setAttributes(before); });
}

void KWEditDocument::setContent(const std::shared_ptr<KWElement>& element,
                                const KWSpriteContent& content) {
    setAttributes(element, content.appliedTo(*element), tr("Change Content"));
}

void KWEditDocument::setStage(const KWStage& stage) {
    if (const auto element = stageElement())
        setAttributes(element, stage.appliedTo(*element), tr("Change Stage"));
    else
        addElement(tr("Stage"), stage.appliedTo(KWElement()), 0);
}

bool KWEditDocument::addChannel(const std::shared_ptr<KWElement>& element,
                                const std::shared_ptr<KWChannel>& channel, const QString& group) {
    const auto array = element ? element->channelArray() : nullptr;
    if (!array || !channel || channel->owner())
        return false;
    const std::string groupName = group.toStdString();
    ChannelPlace place;
    bool isNewGroup = false;
    if (groupName.empty()) {
        place.list = array->ungroupedChannels();
    } else {
        place.group = array->groupWithName(groupName);
        isNewGroup = !place.group;
        if (isNewGroup)
            place.group = std::make_shared<KWChannelGroup>(groupName);
        place.list = place.group->channels();
    }
    if (!place.list || (isNewGroup && !array->channelGroups()))
        return false;
    place.index = static_cast<std::ptrdiff_t>(place.list->size());
    perform(
        tr("Add Channel"),
        [element, channel, place, array, isNewGroup] {
            if (isNewGroup)
                array->channelGroups()->push_back(place.group);
            putChannel(*element, place, channel);
        },
        [element, channel, place, array, isNewGroup] {
            if (isNewGroup)
                array->removeGroup(place.group);
            takeChannel(*element, place, channel);
        });
    return true;
}

bool KWEditDocument::removeChannel(const std::shared_ptr<KWElement>& element,
                                   const std::shared_ptr<KWChannel>& channel) {
    const auto place = element ? placeOf(*element, channel) : std::nullopt;
    if (!place)
        return false;
    perform(
        tr("Remove Channel"), [element, place, channel] { takeChannel(*element, *place, channel); },
        [element, place, channel] { putChannel(*element, *place, channel); });
    return true;
}

void KWEditDocument::renameChannel(const std::shared_ptr<KWChannel>& channel, const QString& name) {
    const std::string before = channel->name();
    const std::string after = name.toStdString();
    if (before == after)
        return;
    const auto rename = [channel](const std::string& to) {
        channel->setName(to);
        if (auto* const element = dynamic_cast<KWElement*>(channel->owner()))
            element->postChannelsDidChange();
    };
    perform(
        tr("Rename Channel"), [rename, after] { rename(after); },
        [rename, before] { rename(before); });
}
