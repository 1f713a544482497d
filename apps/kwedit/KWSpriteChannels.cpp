#include <apps/kwedit/KWSpriteChannels.h>

#include <QCoreApplication>
#include <cmath>
#include <exception>

namespace {

using Role = KWSpriteRole;

std::string lowered(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

struct NamedRole {
    const char* name;
    Role role;
};

constexpr NamedRole namedRoles[] = {
    {"rotation", Role::rotation}, {"scale", Role::scale},
    {"scale x", Role::scaleX},    {"scale y", Role::scaleY},
    {"squash", Role::squash},     {"shear", Role::shear},
    {"opacity", Role::opacity},   {"red", Role::red},
    {"green", Role::green},       {"blue", Role::blue},
    {"radius", Role::radius},     {"width", Role::width},
    {"height", Role::height},     {"movie time", Role::movieTime},
    {"zoom", Role::zoom},         {"pan", Role::pan},
    {"tilt", Role::tilt},
};

std::optional<Role> roleOf(const std::string& group, const std::string& name) {
    if (name == "x" || name == "y") {
        const bool isX = name == "x";
        if (group.empty() || group == "position")
            return isX ? Role::x : Role::y;
        if (group == "scale")
            return isX ? Role::scaleX : Role::scaleY;
        return {};
    }
    for (const NamedRole& each : namedRoles)
        if (name == each.name)
            return each.role;
    return {};
}

} // namespace

KWSpriteChannels::KWSpriteChannels(const std::string& element, const KWChannelArray* array)
    : _element(element) {
    std::array<bool, static_cast<std::size_t>(Role::count)> isTaken{};
    const auto take = [&](const std::string& group, const std::shared_ptr<KWChannelList>& list) {
        if (!list)
            return;
        for (const std::shared_ptr<KWChannel>& channel : *list) {
            if (!channel)
                continue;
            const auto role = roleOf(group, lowered(channel->name()));
            if (!role || isTaken[static_cast<std::size_t>(*role)])
                continue;
            isTaken[static_cast<std::size_t>(*role)] = true;
            _bound.push_back({*role, channel, KWChannelCursor(channel)});
        }
    };
    if (!array)
        return;
    take("", array->ungroupedChannels());
    if (array->channelGroups())
        for (const std::shared_ptr<KWChannelGroup>& group : *array->channelGroups())
            if (group)
                take(lowered(group->name()), group->channels());
}

void KWSpriteChannels::evaluate(KWTime time, Values& values, QStringList& problems) {
    values.fill(std::nullopt);
    for (Bound& bound : _bound) {
        try {
            const float value = bound.cursor.valueForTime(time);
            if (std::isfinite(value))
                values[static_cast<std::size_t>(bound.role)] = value;
        } catch (const std::exception& error) {
            if (!bound.isBroken)
                problems << QCoreApplication::translate(
                                "KWSprite", "%1, channel %2: it cannot be evaluated: %3")
                                .arg(QString::fromStdString(_element),
                                     QString::fromStdString(bound.channel->name()),
                                     QString::fromUtf8(error.what()));
            bound.isBroken = true;
        }
    }
}

std::shared_ptr<KWChannel> KWSpriteChannels::channel(Role role) const {
    for (const Bound& bound : _bound)
        if (bound.role == role)
            return bound.channel;
    return nullptr;
}

std::pair<std::string, std::string> KWSpriteChannels::usualPlace(Role role) {
    switch (role) {
    case Role::x:
        return {"x", "Position"};
    case Role::y:
        return {"y", "Position"};
    case Role::rotation:
        return {"rotation", "Position"};
    case Role::red:
        return {"red", "Color"};
    case Role::green:
        return {"green", "Color"};
    case Role::blue:
        return {"blue", "Color"};
    default:
        break;
    }
    for (const NamedRole& each : namedRoles)
        if (each.role == role)
            return {each.name, ""};
    return {};
}
