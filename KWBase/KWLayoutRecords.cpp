#include <KWBase/KWLayoutRecords.h>

#include <algorithm>
#include <stdexcept>

namespace {

[[noreturn]] void refuse(std::string_view key) {
    throw std::invalid_argument("An object of this kind cannot be stored under " +
                                std::string(key));
}

float numberOf(const QVariant& object, std::string_view key) {
    bool isNumber = false;
    const float number = object.toFloat(&isNumber);
    if (!isNumber)
        refuse(key);
    return number;
}

bool flagOf(const QVariant& object, std::string_view key) {
    if (!object.canConvert<bool>())
        refuse(key);
    return object.toBool();
}

template <class T>
QVariant variantOf(const std::optional<T>& value) {
    return value ? QVariant(*value) : QVariant();
}

} // namespace

KWLayoutRecord::KWLayoutRecord(const Keys& keys, float size, bool isPercent)
    : _keys(keys), _size(size), _isPercent(isPercent) {}

KWLayoutRecord::~KWLayoutRecord() = default;

std::optional<float>* KWLayoutRecord::numberForKey(std::string_view key) {
    if (key == _keys.size)
        return &_size;
    if (key == _keys.actualOffset)
        return &_actualOffset;
    return key == _keys.actualSize ? &_actualSize : nullptr;
}

std::optional<bool>* KWLayoutRecord::flagForKey(std::string_view key) {
    if (key == _keys.isPercent)
        return &_isPercent;
    return key == _keys.isVisible ? &_isVisible : nullptr;
}

QVariant KWLayoutRecord::objectForKey(std::string_view key) const {
    if (key == _keys.size)
        return variantOf(_size);
    if (key == _keys.isPercent)
        return variantOf(_isPercent);
    if (key == _keys.isVisible)
        return variantOf(_isVisible);
    if (key == _keys.actualOffset)
        return variantOf(_actualOffset);
    if (key == _keys.actualSize)
        return variantOf(_actualSize);
    if (key == _keys.contents)
        return contents();
    const auto found = _others.find(key);
    return found == _others.end() ? QVariant() : found->second;
}

void KWLayoutRecord::setObjectForKey(const QVariant& object, std::string_view key) {
    if (!object.isValid())
        refuse(key);
    if (auto* const number = numberForKey(key))
        *number = numberOf(object, key);
    else if (auto* const flag = flagForKey(key))
        *flag = flagOf(object, key);
    else if (key == _keys.contents) {
        if (!takeContents(object))
            refuse(key);
    } else
        _others.insert_or_assign(std::string(key), object);
}

void KWLayoutRecord::removeObjectForKey(std::string_view key) {
    if (auto* const number = numberForKey(key))
        number->reset();
    else if (auto* const flag = flagForKey(key))
        flag->reset();
    else if (key == _keys.contents)
        takeContents(QVariant());
    else if (const auto found = _others.find(key); found != _others.end())
        _others.erase(found);
}

std::vector<std::string> KWLayoutRecord::allKeys() const {
    std::vector<std::string> keys;
    for (const std::string_view key : {_keys.size, _keys.isPercent, _keys.isVisible,
                                       _keys.actualOffset, _keys.actualSize, _keys.contents})
        if (objectForKey(key).isValid())
            keys.emplace_back(key);
    for (const auto& [key, object] : _others)
        keys.push_back(key);
    std::sort(keys.begin(), keys.end());
    return keys;
}

KWLayoutShare KWLayoutRecord::share() const {
    return {_size.value_or(0), _isPercent.value_or(false), _isVisible.value_or(false),
            _actualOffset.value_or(0), _actualSize.value_or(0)};
}

void KWLayoutRecord::setActual(float offset, float size) {
    _actualOffset = offset;
    _actualSize = size;
}

KWLayoutPane::KWLayoutPane(QWidget* view, float height, bool heightIsPercent)
    : KWLayoutRecord(keys(), height, heightIsPercent), _view(view) {}

const KWLayoutRecord::Keys& KWLayoutPane::keys() {
    static constexpr Keys all{KWPaneHeightKey,       KWPaneHeightIsPercentKey, KWPaneVisibleKey,
                              KWPaneActualOffsetKey, KWPaneActualHeightKey,    KWPaneViewKey};
    return all;
}

QVariant KWLayoutPane::contents() const {
    return _view ? QVariant::fromValue(view()) : QVariant();
}

bool KWLayoutPane::takeContents(const QVariant& object) {
    if (object.isValid() && !object.canConvert<QWidget*>())
        return false;
    _view = object.value<QWidget*>();
    return true;
}

KWLayoutColumn::KWLayoutColumn(float width, bool widthIsPercent)
    : KWLayoutRecord(keys(), width, widthIsPercent) {}

const KWLayoutRecord::Keys& KWLayoutColumn::keys() {
    static constexpr Keys all{KWColumnWidthKey,       KWColumnWidthIsPercentKey,
                              KWColumnVisibleKey,     KWColumnActualOffsetKey,
                              KWColumnActualWidthKey, KWColumnPanesKey};
    return all;
}

QVariant KWLayoutColumn::contents() const {
    return _panes ? QVariant::fromValue(_panes) : QVariant();
}

bool KWLayoutColumn::takeContents(const QVariant& object) {
    if (object.isValid() && !object.canConvert<std::shared_ptr<KWLayoutPaneList>>())
        return false;
    _panes = object.value<std::shared_ptr<KWLayoutPaneList>>();
    return true;
}
