#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/common/Json.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>

#include <map>

namespace {

struct InfoArguments {
    std::string document;
    bool isJson = false;
};

/// The places of each group of each element; under a null group those in no group.
using PlacesByGroup =
    std::map<std::pair<std::size_t, const KWChannelGroup*>, std::vector<const Place*>>;

std::string modeName(std::int32_t mode) {
    switch (mode) {
    case KWKeyFrameModeLinear:
        return "linear";
    case KWKeyFrameModeHermite:
        return "Hermite";
    case KWKeyFrameModeStep:
        return "step";
    default:
        return "mode " + std::to_string(mode);
    }
}

std::string repeatName(std::int32_t repeat) {
    switch (repeat) {
    case KWRepeatModeNone:
        return "no repeat";
    case KWRepeatModeCycle:
        return "cycle";
    case KWRepeatModePingPong:
        return "ping-pong";
    default:
        return "repeat " + std::to_string(repeat);
    }
}

std::string unitTypeName(std::int32_t type) {
    return type == KWUnitTypeLength ? "length" : type == KWUnitTypeAngle ? "angle" : "none";
}

std::string kindName(const KWChannel& channel) {
    if (dynamic_cast<const KWConstantChannel*>(&channel))
        return "constant";
    if (dynamic_cast<const KWKeyFramedChannel*>(&channel))
        return "keyframed";
    if (dynamic_cast<const KWAlgebricChannel*>(&channel))
        return "expression";
    return kwClassName(channel);
}

Json channelJson(const Place& place) {
    const KWChannel& channel = *place.channel;
    Json json = {{"name", channel.name()},
                 {"path", place.path},
                 {"kind", kindName(channel)},
                 {"class", kwClassName(channel)},
                 {"unitType", unitTypeName(channel.unitType())},
                 {"colorIndex", channel.channelColorIndex()}};
    if (const auto* constant = dynamic_cast<const KWConstantChannel*>(&channel))
        json["value"] = constant->valueForTime(std::nullopt);
    if (const auto* keyFramed = dynamic_cast<const KWKeyFramedChannel*>(&channel)) {
        json["keyCount"] = keyFramed->keyframeCount();
        if (const auto first = keyFramed->firstKeyframe())
            json["firstTime"] = first->time();
        if (const auto last = keyFramed->lastKeyframe())
            json["lastTime"] = last->time();
        json["mode"] = modeName(keyFramed->keyFrameChannelMode());
        json["repeat"] = repeatName(keyFramed->repeatMode());
    }
    if (const auto* algebric = dynamic_cast<const KWAlgebricChannel*>(&channel)) {
        const auto text = algebric->sourceText();
        json["text"] = text ? Json(*text) : Json();
        json["expression"] = text ? Json(algebric->expression().value_or("")) : Json();
    }
    const std::string why = kwIrregularity(channel);
    if (!why.empty())
        json["irregular"] = why;
    return json;
}

Json channelsJson(const PlacesByGroup& places, std::size_t element, const KWChannelGroup* group) {
    Json list = Json::array();
    if (const auto found = places.find({element, group}); found != places.end())
        for (const Place* place : found->second)
            list.push_back(channelJson(*place));
    return list;
}

/// The groups to show of an element, in order.
std::vector<const KWChannelGroup*> groupsOf(const KWDocument::Element& element) {
    std::vector<const KWChannelGroup*> groups;
    if (element.group)
        groups.push_back(element.group.get());
    if (element.channelArray && element.channelArray->channelGroups())
        for (const auto& group : *element.channelArray->channelGroups())
            groups.push_back(group.get());
    return groups;
}

std::string infoJson(const KWDocument& document, const PlacesByGroup& places) {
    Json elements = Json::array();
    for (std::size_t i = 0; i < document.elements().size(); ++i) {
        const KWDocument::Element& element = document.elements()[i];
        Json groups = Json::array();
        for (const KWChannelGroup* group : groupsOf(element))
            groups.push_back(
                {{"name", group->name()}, {"channels", channelsJson(places, i, group)}});
        elements.push_back({{"name", element.name},
                            {"class", element.className},
                            {"channels", channelsJson(places, i, nullptr)},
                            {"groups", std::move(groups)}});
    }
    return jsonText({{"file", document.file()},
                     {"format", formName(document.form())},
                     {"elements", std::move(elements)}},
                    2) +
           "\n";
}

std::vector<std::string> channelRow(const Place& place, const std::string& indent) {
    const KWChannel& channel = *place.channel;
    std::vector<std::string> row{indent + printable(channel.name()), printable(kindName(channel)),
                                 "", "", unitTypeName(channel.unitType())};
    if (const auto* constant = dynamic_cast<const KWConstantChannel*>(&channel))
        row.push_back("value " + floatText(constant->valueForTime(std::nullopt)));
    if (const auto* keyFramed = dynamic_cast<const KWKeyFramedChannel*>(&channel)) {
        row[2] = counted(keyFramed->keyframeCount(), "key");
        if (const auto first = keyFramed->firstKeyframe())
            row[3] = floatText(first->time()) + " .. " +
                     floatText(keyFramed->lastKeyframe().value_or(*first).time()) + " s";
        row.push_back(modeName(keyFramed->keyFrameChannelMode()) + ", " +
                      repeatName(keyFramed->repeatMode()));
    }
    if (const auto* algebric = dynamic_cast<const KWAlgebricChannel*>(&channel)) {
        const auto text = algebric->sourceText();
        row.push_back(text ? printable(*text) : "no expression");
    }
    if (kwIsOfUnknownKind(channel))
        row.emplace_back("of a class that is not known here");
    const std::string why = kwIrregularity(channel);
    if (!why.empty())
        row.push_back("IRREGULAR: " + why);
    return row;
}

std::string infoText(const KWDocument& document, const PlacesByGroup& places,
                     std::size_t channelCount) {
    using enum Table::Align;
    Table table({left, left, right, left, left, left, left});
    const auto addChannels = [&](std::size_t element, const KWChannelGroup* group,
                                 const std::string& indent) {
        if (const auto found = places.find({element, group}); found != places.end())
            for (const Place* place : found->second)
                table.addRow(channelRow(*place, indent));
    };
    for (std::size_t i = 0; i < document.elements().size(); ++i) {
        const KWDocument::Element& element = document.elements()[i];
        const std::string className = printable(element.className);
        table.addRow({element.name.empty() ? "(" + className + ")" : printable(element.name),
                      element.name.empty() || className == "KWElement" ? "" : className});
        addChannels(i, nullptr, "  ");
        for (const KWChannelGroup* group : groupsOf(element)) {
            table.addRow({"  " + printable(group->name()) + "/"});
            addChannels(i, group, "    ");
        }
    }
    return printable(document.file()) + ": " +
           (document.form() == KWDocument::Form::xml ? "XML" : formName(document.form())) +
           " archive, " + counted(document.elements().size(), "element") + ", " +
           counted(channelCount, "channel") + "\n" + table.text();
}

void runInfo(const InfoArguments& arguments) {
    const KWDocument document = openDocument(arguments.document);
    const std::vector<Place> channels = document.channels();
    PlacesByGroup places;
    for (const Place& place : channels)
        places[{place.element, place.group.get()}].push_back(&place);
    print(arguments.isJson ? infoJson(document, places)
                           : infoText(document, places, channels.size()));
}

} // namespace

void addInfoCommand(Command& program) {
    Command command = program.command("info", "Shows a document's elements, groups and channels");
    const auto arguments = std::make_shared<InfoArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command.flag("--json", arguments->isJson, "as JSON; what is not finite is null");
    command.setExamples("kwchannel info ball.kwdoc\n"
                        "kwchannel info --json ball.kwdoc | jq '.elements[].name'\n");
    command.onRun([arguments] { runInfo(*arguments); });
}
