#include <KWBase/KWUnknownChannel.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

struct Place {
    std::string_view key;  ///< of the field in a keyed archive
    std::size_t index;     ///< in a sequential one
    std::string_view type; ///< there
    std::int32_t since;    ///< the version of KWChannel that brought it
};

constexpr Place namePlace{"name", 0, "@", 0};
constexpr Place colorIndexPlace{"colorIndex", 1, "i", 0};
constexpr Place channelGroupPlace{"channelGroup", 2, "@", 1};
constexpr Place unitTypePlace{"unitType", 3, "i", 2};
// The owner is in no sequential archive.
constexpr Place ownerPlace{"owner", std::numeric_limits<std::size_t>::max(), "@", 0};

/// The version that the channel's part of sequential contents has.
std::int32_t channelVersion(const KWUnknownObject& contents) {
    const auto& names = contents.classChain();
    const auto found = std::ranges::find(names, KWChannel::classObject().name());
    const auto index = static_cast<std::size_t>(found - names.begin());
    return index < contents.classVersions().size() ? contents.classVersions()[index] : 0;
}

/// What one call wrote, in its place in the channel's part, which comes first.
const KWArchiveField* sequentialField(const KWUnknownObject& contents, const Place& place) {
    const auto& calls = contents.fields();
    if (channelVersion(contents) < place.since || place.index >= calls.size() ||
        calls[place.index].key != place.type || calls[place.index].items.size() != 1)
        return nullptr;
    return &calls[place.index].items.front();
}

/// The value of a field, or null where there is none or it is no single value.
const KWArchiveValue* fieldValue(const KWUnknownObject& contents, const Place& place) {
    const KWArchiveField* const field =
        contents.isSequential() ? sequentialField(contents, place) : contents.field(place.key);
    const bool isValue = field && (field->form == KWArchiveField::Form::reference ||
                                   field->form == KWArchiveField::Form::inlined);
    return isValue ? &field->value : nullptr;
}

std::optional<std::int32_t> int32Field(const KWUnknownObject& contents, const Place& place) {
    const KWArchiveValue* const value = fieldValue(contents, place);
    const KWNumber* const number = value ? value->number() : nullptr;
    if (!number)
        return std::nullopt;
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t wide = number->int64Value();
    if (wide < Limits::min() || wide > Limits::max())
        return std::nullopt;
    return static_cast<std::int32_t>(wide);
}

std::shared_ptr<KWObject> objectField(const KWUnknownObject& contents, const Place& place) {
    const KWArchiveValue* const value = fieldValue(contents, place);
    return value ? value->object() : nullptr;
}

} // namespace

std::shared_ptr<KWObject> KWChannel::makeUnknownChannel(std::shared_ptr<KWUnknownObject> contents) {
    return std::make_shared<KWUnknownChannel>(std::move(contents));
}

KWUnknownChannel::KWUnknownChannel(std::shared_ptr<KWUnknownObject> contents)
    : _contents(std::move(contents)) {
    if (!_contents)
        throw std::invalid_argument("KWUnknownChannel: no contents");
    readContents();
}

KWUnknownChannel::~KWUnknownChannel() = default;

bool KWUnknownChannel::initWithCoder(KWCoder&) {
    readContents();
    return true;
}

bool KWUnknownChannel::takeContentsOf(const KWChannel&) {
    return false;
}

void KWUnknownChannel::readContents() {
    // What the unknown class may have put in these places is its own affair: anything of another
    // kind than a channel's part has is passed over.
    const KWArchiveValue* const name = fieldValue(*_contents, namePlace);
    if (const KWArchiveString* const text = name ? name->string() : nullptr)
        setName(text->text);
    if (const auto index = int32Field(*_contents, colorIndexPlace))
        setChannelColorIndex(*index);
    if (const auto type = int32Field(*_contents, unitTypePlace))
        setUnitType(*type);
    takeArchivedGroup(objectField(*_contents, channelGroupPlace));
    takeArchivedOwner(objectField(*_contents, ownerPlace));
}
