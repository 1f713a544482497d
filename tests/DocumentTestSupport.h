#pragma once

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnknownObject.h>

#include <apps/common/KWDocument.h>

#include <memory>
#include <string>
#include <vector>

inline std::shared_ptr<KWConstantChannel> constantChannel(const std::string& name, float value) {
    return channelWithNameInitialValueColor<KWConstantChannel>(name, value, 0);
}

inline std::shared_ptr<KWAlgebricChannel> algebricChannel(const std::string& name,
                                                          const std::string& text) {
    auto channel = std::make_shared<KWAlgebricChannel>(name);
    channel->setExpression(text);
    return channel;
}

/// What is logged while it lives.
class LoggedLines {
  public:
    LoggedLines()
        : _before(KWSetLogHandler([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~LoggedLines() { KWSetLogHandler(std::move(_before)); }
    LoggedLines(const LoggedLines&) = delete;
    LoggedLines& operator=(const LoggedLines&) = delete;

    std::vector<std::string> lines;

  private:
    KWLogHandler _before;
};

/// An element with these channels in no group, and these in the group "Group".
inline std::shared_ptr<KWElement>
elementWith(const std::string& name, const std::vector<std::shared_ptr<KWChannel>>& channels,
            const std::vector<std::shared_ptr<KWChannel>>& grouped = {}) {
    auto element = std::make_shared<KWElement>(name);
    for (const auto& channel : channels)
        element->addChannelToGroupNamed(channel);
    for (const auto& channel : grouped)
        element->addChannelToGroupNamed(channel, "Group");
    return element;
}

inline KWDocument documentWith(const std::vector<std::shared_ptr<KWElement>>& elements) {
    KWDocument document;
    for (const auto& element : elements)
        document.addElement(element);
    return document;
}

/// What one call writes into a sequential archive: values of one type each.
inline KWArchiveField streamGroup(const std::string& types,
                                  const std::vector<KWArchiveValue>& values) {
    KWArchiveField group;
    group.key = types;
    group.form = KWArchiveField::Form::list;
    for (const KWArchiveValue& value : values) {
        KWArchiveField item;
        item.form = value.object() || value.array() ? KWArchiveField::Form::reference
                                                    : KWArchiveField::Form::inlined;
        item.value = value;
        group.items.push_back(std::move(item));
    }
    return group;
}

/// An object of an unknown class, as a sequential archive brings it.
inline std::shared_ptr<KWUnknownObject> streamObject(const std::vector<std::string>& chain,
                                                     const std::vector<std::int32_t>& versions,
                                                     std::vector<KWArchiveField> groups) {
    auto object = std::make_shared<KWUnknownObject>();
    object->setClassChain(chain);
    object->setClassVersions(versions);
    object->setFields(std::move(groups));
    return object;
}
