#include <KWBase/KWUnknownChannel.h>

#include <limits>
#include <stdexcept>

namespace {

/// The value of a field, or null where there is none or it is no single value.
const KWArchiveValue* fieldValue(const KWUnknownObject& contents, std::string_view key) {
    const KWArchiveField* const field = contents.field(key);
    const bool isValue = field && (field->form == KWArchiveField::Form::reference ||
                                   field->form == KWArchiveField::Form::inlined);
    return isValue ? &field->value : nullptr;
}

std::optional<std::int32_t> int32Field(const KWUnknownObject& contents, std::string_view key) {
    const KWArchiveValue* const value = fieldValue(contents, key);
    const KWNumber* const number = value ? value->number() : nullptr;
    if (!number)
        return std::nullopt;
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t wide = number->int64Value();
    if (wide < Limits::min() || wide > Limits::max())
        return std::nullopt;
    return static_cast<std::int32_t>(wide);
}

std::shared_ptr<KWObject> objectField(const KWUnknownObject& contents, std::string_view key) {
    const KWArchiveValue* const value = fieldValue(contents, key);
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
    // What the unknown class may have put under these keys is its own affair: anything of another
    // kind than a channel's part has is passed over.
    const KWArchiveValue* const name = fieldValue(*_contents, "name");
    if (const KWArchiveString* const text = name ? name->string() : nullptr)
        setName(text->text);
    if (const auto index = int32Field(*_contents, "colorIndex"))
        setChannelColorIndex(*index);
    if (const auto type = int32Field(*_contents, "unitType"))
        setUnitType(*type);
    takeArchivedGroup(objectField(*_contents, "channelGroup"));
    takeArchivedOwner(objectField(*_contents, "owner"));
}
