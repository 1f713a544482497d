#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWText.h>
#include <KWFoundation/KWUnknownObject.h>

#include <apps/common/KWDocument.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

// The places of a document's channels, and what can be said of a channel from outside.

namespace {

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string path;
    for (const std::string_view part : parts) {
        if (part.empty())
            continue;
        if (!path.empty())
            path += '/';
        path += part;
    }
    return path;
}

/// The path without the "#2" that tells apart channels of the same path.
std::string_view withoutNumber(std::string_view path, const std::string& name) {
    const std::size_t mark = path.rfind('#');
    if (mark == std::string_view::npos || !path.substr(0, mark).ends_with(name))
        return path;
    const std::string_view digits = path.substr(mark + 1);
    const bool isNumber = !digits.empty() && std::all_of(digits.begin(), digits.end(), [](char c) {
        return c >= '0' && c <= '9';
    });
    return isNumber && !path.ends_with(name) ? path.substr(0, mark) : path;
}

bool endsWithParts(std::string_view path, std::string_view parts) {
    return path.size() > parts.size() && path.ends_with(parts) &&
           path[path.size() - parts.size() - 1] == '/';
}

std::string lowered(std::string_view text) {
    std::string low(text);
    for (char& c : low)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return low;
}

/// How many letters must be typed, dropped or changed to get from one text to the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = above;
        }
    }
    return row[b.size()];
}

std::vector<std::string> nearest(const std::vector<KWDocument::Place>& places,
                                 std::string_view address) {
    constexpr std::size_t longest = 200; // the distance costs the product of both lengths
    std::vector<std::pair<std::size_t, std::string>> ranked;
    const std::string wanted = lowered(address.substr(0, longest));
    for (const KWDocument::Place& place : places) {
        const std::string path = lowered(place.path).substr(0, longest);
        const std::string name = lowered(place.channel->name()).substr(0, longest);
        if (!wanted.empty() && path.find(wanted) != std::string::npos) {
            ranked.emplace_back(0, place.path);
            continue;
        }
        const std::size_t distance =
            std::min(editDistance(wanted, path), editDistance(wanted, name));
        if (distance <= std::max<std::size_t>(1, wanted.size() / 3))
            ranked.emplace_back(distance, place.path);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> paths;
    for (auto& entry : ranked)
        paths.push_back(std::move(entry.second));
    return paths;
}

std::string keyNumber(std::size_t index) {
    return std::to_string(index + 1);
}

bool hasEquallyMany(const KWKeyFramedChannel& channel) {
    try {
        // Archiving is what counts keys, values and shapes.
        KWKeyedArchiver archiver;
        channel.encodeWithCoder(archiver);
        return true;
    } catch (const KWException&) {
        return false;
    }
}

std::string disorder(const KWKeyFramedChannel& channel) {
    const std::vector<KWTime> keys = channel.allKeyframes();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const float time = keys[i].time();
        if (std::isnan(time))
            return "the time of key " + keyNumber(i) + " is not a number";
        if (i == 0 || keys[i - 1] < keys[i])
            continue;
        if (keys[i - 1] == keys[i])
            return "keys " + keyNumber(i - 1) + " and " + keyNumber(i) + " share the time " +
                   KWExactStringFromFloat(time);
        return "key " + keyNumber(i) + " at " + KWExactStringFromFloat(time) +
               " stands behind a later one";
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::optional<KWData> shape = channel.hermiteValueForKeyframe(keys[i]);
        if (shape && shape->size() != sizeof(HJHermiteParam))
            return "the shape of key " + keyNumber(i) + " has " + std::to_string(shape->size()) +
                   " bytes";
    }
    return "its keys are not in order";
}

} // namespace

std::vector<KWDocument::Place> KWDocument::channels() const {
    std::vector<Place> places;
    std::unordered_set<const void*> seen;
    const auto addList = [&](std::size_t element, const std::shared_ptr<KWChannelGroup>& group,
                             const std::shared_ptr<KWChannelList>& list) {
        if (!list || !seen.insert(list.get()).second)
            return;
        for (const std::shared_ptr<KWChannel>& channel : *list)
            if (channel)
                places.push_back(
                    {joined({_elements[element].name, group ? group->name() : "", channel->name()}),
                     element, group, channel});
    };
    for (std::size_t i = 0; i < _elements.size(); ++i) {
        const Element& element = _elements[i];
        if (element.channel)
            places.push_back({element.channel->name(), i, nullptr, element.channel});
        if (element.group)
            addList(i, element.group, element.group->channels());
        if (!element.channelArray)
            continue;
        addList(i, nullptr, element.channelArray->ungroupedChannels());
        if (element.channelArray->channelGroups())
            for (const std::shared_ptr<KWChannelGroup>& group :
                 *element.channelArray->channelGroups())
                if (group)
                    addList(i, group, group->channels());
    }

    std::unordered_map<std::string, std::pair<std::size_t, std::size_t>> counts;
    for (const Place& place : places)
        ++counts[place.path].first;
    for (Place& place : places) {
        auto& [count, used] = counts[place.path];
        if (count > 1)
            place.path.append("#").append(std::to_string(++used));
    }
    return places;
}

const KWDocument::Place& KWDocument::placeAt(const std::vector<Place>& places,
                                             std::string_view address) {
    std::vector<const Place*> whole, trailing;
    for (const Place& place : places) {
        const std::string_view plain = withoutNumber(place.path, place.channel->name());
        if (place.path == address || plain == address)
            whole.push_back(&place);
        else if (endsWithParts(place.path, address) || endsWithParts(plain, address))
            trailing.push_back(&place);
    }
    const std::vector<const Place*>& found = whole.empty() ? trailing : whole;
    if (found.size() == 1)
        return *found.front();

    const std::string quoted = std::string("\"").append(address).append("\"");
    if (found.empty())
        throw KWAddressError(KWAddressError::Reason::notFound, "there is no channel " + quoted,
                             nearest(places, address));
    std::vector<std::string> candidates;
    for (const Place* place : found)
        candidates.push_back(place->path);
    throw KWAddressError(KWAddressError::Reason::ambiguous,
                         quoted + " names " + std::to_string(found.size()) + " channels",
                         std::move(candidates));
}

std::string kwIrregularity(const KWChannel& channel) {
    const auto* keyFramed = dynamic_cast<const KWKeyFramedChannel*>(&channel);
    if (!keyFramed || keyFramed->isRegular())
        return {};
    if (!hasEquallyMany(*keyFramed))
        return "keys, values and shapes are not equally many";
    return disorder(*keyFramed);
}

bool kwIsOfUnknownKind(const KWChannel& channel) {
    return channel.unknownContents() != nullptr;
}

std::string kwClassName(const KWObject& object) {
    if (const KWUnknownObject* contents = object.unknownContents())
        return contents->className();
    return std::string(object.isa().name());
}
