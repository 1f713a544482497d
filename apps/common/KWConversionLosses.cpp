#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>

#include <apps/common/KWChannelKeys.h>
#include <apps/common/KWConversionLosses.h>
#include <apps/common/KWGraphWalk.h>
#include <apps/common/KWStreamValue.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <unordered_set>

namespace {

using Form = KWDocument::Form;

std::string inQuoteMarks(std::string_view text) {
    return std::string("\"").append(text).append("\"");
}

/// The beginning of a long text.
std::string inQuoteMarksShortened(std::string_view text) {
    constexpr std::size_t longest = 100;
    if (text.size() <= longest)
        return inQuoteMarks(text);
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) // a whole character
        --end;
    return inQuoteMarks(std::string(text.substr(0, end)) + "...");
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

bool isMinusZero(float value) {
    return value == 0 && std::signbit(value);
}

/// " (key 3)", or " (the first of them key 3)": where to look.
std::string atKeys(const std::vector<std::size_t>& indices) {
    return std::string(indices.size() == 1 ? " (key " : " (the first of them key ")
        .append(std::to_string(indices.front() + 1))
        .append(")");
}

template <class Predicate>
std::vector<std::size_t> indicesWhere(std::size_t count, Predicate predicate) {
    std::vector<std::size_t> indices;
    for (std::size_t k = 0; k < count; ++k)
        if (predicate(k))
            indices.push_back(k);
    return indices;
}

/// Whether two trees are the same expression, numbers by their bits.
bool areEqual(const ExprNode* first, const ExprNode* second) {
    std::vector<std::pair<const ExprNode*, const ExprNode*>> waiting{{first, second}};
    while (!waiting.empty()) {
        const auto [one, other] = waiting.back();
        waiting.pop_back();
        if (!one && !other)
            continue;
        if (!one || !other || one->code != other->code ||
            std::bit_cast<std::uint32_t>(one->value) != std::bit_cast<std::uint32_t>(other->value))
            return false;
        waiting.emplace_back(one->left, other->left);
        waiting.emplace_back(one->right, other->right);
    }
    return true;
}

/// What a sequential archive of the interpreter does not bring back; "" when it brings all.
std::string lossInPrint(const KWAlgebricInterpreter& interpreter) {
    const std::optional<std::string>& printed = interpreter.expression();
    const std::string kept = "its expression " +
                             inQuoteMarksShortened(interpreter.sourceText().value_or("")) +
                             ": what a sequential archive has of it, " +
                             inQuoteMarksShortened(printed.value_or("")) + ", ";
    if (KWAlgebricInterpreter::faultInExpression(printed, interpreter.mode()).kind !=
        KWExpressionFault::Kind::none)
        return kept + "cannot be read again";
    KWAlgebricInterpreter again;
    again.setExpressionMode(printed, interpreter.mode());
    return areEqual(interpreter.tree(), again.tree()) ? "" : kept + "is another expression";
}

class Search {
  public:
    Search(const KWDocument& document, Form form, const KWClassVersions& versions)
        : _document(document), _isSequential(form == Form::sequential),
          _wasSequential(document.form() == Form::sequential) {
        if (_isSequential)
            _versions = document.writtenVersions(versions);
    }

    KWConversionLosses result() {
        if (_isSequential != _wasSequential)
            searchTops();
        findCarriedTexts();
        searchGraph();
        searchElements();
        searchAttributes();
        std::unordered_set<const KWChannel*> placed;
        for (const KWDocument::Place& place : _document.channels()) {
            searchChannel(place);
            placed.insert(place.channel.get());
        }
        for (const auto& channel : _algebric)
            if (!placed.contains(channel.get()))
                searchExpression(inQuoteMarks(channel->name()) + " outside of the elements",
                                 *channel);
        return std::move(_found);
    }

  private:
    void lose(const std::string& place, const std::string& what) {
        _found.losses.push_back(place + ": " + what);
    }

    std::int64_t version(const KWClass& aClass) const {
        const auto found = _versions.find(aClass.name());
        return found == _versions.end() ? aClass.version() : found->second;
    }

    /// Of which algebraic channels an element will write the texts.
    void findCarriedTexts() {
        if (_isSequential && version(KWElement::classObject()) < 1)
            return;
        for (const KWDocument::Element& element : _document.elements())
            if (element.channelArray && dynamic_cast<const KWElement*>(element.object.get()))
                for (const auto& channel : element.channelArray->channelEnumerator())
                    _carried.insert(channel.get());
    }

    void searchTops() {
        if (!_isSequential) {
            for (const KWArchiveField& value : _document.furtherValues())
                _found.losses.push_back("the value of the types " + inQuoteMarks(value.key) +
                                        " behind the root has no place in a keyed archive");
            return;
        }
        bool hasRoot = false;
        for (const KWDocument::Top& top : _document.tops())
            hasRoot = hasRoot || top.key == "root";
        for (std::size_t k = 0; k < _document.tops().size(); ++k) {
            const std::string& key = _document.tops()[k].key;
            if (!hasRoot && k == 0)
                _found.losses.push_back("the root has no name in a sequential archive; here it is "
                                        "called " +
                                        inQuoteMarks(key));
            else if (key != "root")
                _found.losses.push_back("the value " + inQuoteMarks(key) +
                                        " at the top has no place in a sequential archive");
        }
        for (const std::string& key : _document.inlinedKeys())
            _found.losses.push_back("the value " + inQuoteMarks(key) +
                                    " at the top has no place in a sequential archive");
    }

    void searchGraph() {
        // In order of first appearance.
        std::vector<std::pair<std::string, std::size_t>> unknown;
        std::size_t minusZeros = 0;
        const auto visit = [&](const KWArchiveValue& value) {
            if (const KWNumber* number = value.number())
                minusZeros += number->isReal() && number->doubleValue() == 0 &&
                              std::signbit(number->doubleValue());
            const auto object = value.object();
            if (auto channel = std::dynamic_pointer_cast<const KWAlgebricChannel>(object))
                _algebric.push_back(std::move(channel));
            const KWUnknownObject* const contents = object ? object->unknownContents() : nullptr;
            if (!contents || contents->isSequential() == _isSequential)
                return;
            const auto known = std::find_if(unknown.begin(), unknown.end(), [&](const auto& each) {
                return each.first == contents->className();
            });
            if (known == unknown.end())
                unknown.emplace_back(contents->className(), 1);
            else
                ++known->second;
        };
        if (_isSequential) {
            kwWalkGraph(kwRootOf(_document), visit);
            kwWalkGraph(kwReferencesOf(_document.furtherValues()), visit);
        } else {
            for (const KWDocument::Top& top : _document.tops())
                kwWalkGraph(top.value, visit);
        }
        for (const auto& [name, count] : unknown)
            _found.refusals.push_back(counted(count, "object", "objects") + " of the class " +
                                      inQuoteMarks(name) + ", which is not known here, " +
                                      (_isSequential
                                           ? "with keys that a sequential archive does not have"
                                           : "without the keys that a keyed archive needs"));
        if (_isSequential && minusZeros > 0)
            _found.losses.push_back(counted(minusZeros, "number", "numbers") +
                                    " -0 outside channels: a sequential archive has no sign of 0");
    }

    void searchAttributes() {
        if (!_isSequential || version(KWElement::classObject()) >= 2)
            return;
        for (const KWDocument::Element& element : _document.elements()) {
            const auto* const ours = dynamic_cast<const KWElement*>(element.object.get());
            if (ours && !ours->attributes().empty())
                lose(element.name.empty() ? element.className : element.name,
                     "its " + counted(ours->attributes().size(), "attribute", "attributes") +
                         ": an element of version " +
                         std::to_string(version(KWElement::classObject())) + " has none");
        }
    }

    void searchElements() {
        if (!_isSequential || version(KWChannelArray::classObject()) >= 1)
            return;
        std::vector<const KWChannelArray*> seen;
        for (const KWDocument::Element& element : _document.elements()) {
            const KWChannelArray* const array = element.channelArray.get();
            if (!array || !array->channelGroups() ||
                std::find(seen.begin(), seen.end(), array) != seen.end())
                continue;
            seen.push_back(array);
            for (const auto& group : *array->channelGroups())
                if (group)
                    lose(element.name.empty() ? element.className : element.name,
                         "the group " + inQuoteMarks(group->name()) + " with its " +
                             counted(group->count(), "channel", "channels") +
                             ": an array of version 0 has no groups");
        }
    }

    void searchChannel(const KWDocument::Place& place) {
        const KWDocument::Element& element = _document.elements()[place.element];
        const bool isLeftOut = _isSequential && place.group && element.channelArray &&
                               version(KWChannelArray::classObject()) < 1;
        if (isLeftOut || kwIsOfUnknownKind(*place.channel))
            return;
        if (_isSequential)
            searchCommonPart(place, element);
        if (const auto* channel = dynamic_cast<const KWKeyFramedChannel*>(place.channel.get()))
            searchKeys(place, *channel);
        if (const auto* channel = dynamic_cast<const KWAlgebricChannel*>(place.channel.get()))
            searchExpression(place.path, *channel);
        if (_isSequential && dynamic_cast<const KWConstantChannel*>(place.channel.get()) &&
            isMinusZero(place.channel->valueForTime(std::nullopt)))
            lose(place.path, "the value is -0: a sequential archive has no sign of 0");
    }

    void searchExpression(const std::string& place, const KWAlgebricChannel& channel) {
        const auto text = channel.sourceText();
        if (!text || _carried.contains(&channel))
            return;
        if (!_isSequential)
            lose(place, "its expression " + inQuoteMarksShortened(*text) +
                            ": a keyed archive keeps only those of channels in a KWElement");
        else if (const std::string loss = lossInPrint(*channel.interpreter()); !loss.empty())
            lose(place, loss);
    }

    void searchCommonPart(const KWDocument::Place& place, const KWDocument::Element& element) {
        const KWChannel& channel = *place.channel;
        if (!_wasSequential && channel.owner() && !isRestoredOwner(*channel.owner(), element))
            lose(place.path, "its owner: a sequential archive has none");
        const std::int64_t written = version(KWChannel::classObject());
        if (written < 1 && channel.channelGroup())
            lose(place.path, "its link to its group: a channel of version 0 has none");
        if (written < 2 && channel.unitType() != KWUnitTypeNone)
            lose(place.path,
                 "its unit type: a channel of version " + std::to_string(written) + " has none");
    }

    /// An element takes the channels of its array for its own when it is read.
    bool isRestoredOwner(const KWChannelOwner& owner, const KWDocument::Element& element) const {
        const auto* const user = dynamic_cast<const KWElement*>(&owner);
        if (!user || !element.channelArray || user->channelArray() != element.channelArray)
            return false;
        return std::any_of(_document.elements().begin(), _document.elements().end(),
                           [user](const auto& each) { return each.object.get() == user; });
    }

    void searchKeys(const KWDocument::Place& place, const KWKeyFramedChannel& channel) {
        if (channel.keyframeCount() != channel.valueCount() ||
            channel.keyframeCount() != channel.hermiteCount()) {
            _found.refusals.push_back(place.path +
                                      ": keys, values and shapes are not equally many");
            return;
        }
        // A file brings none such, but a host may.
        if (const std::string why = kwIrregularity(channel); why.starts_with("the shape"))
            lose(place.path, why + "; an archive has 36 of each");
        const KWChannelKeys keys = kwKeysOf(channel);
        searchRecords(place, keys);
        if (!_isSequential)
            return;
        const auto lostSigns = [&](const std::vector<float>& list, const char* one,
                                   const char* many) {
            const auto found =
                indicesWhere(list.size(), [&](std::size_t k) { return isMinusZero(list[k]); });
            if (!found.empty())
                lose(place.path, counted(found.size(), one, many) + " of -0" + atKeys(found) +
                                     ": a sequential archive has no sign of 0");
        };
        lostSigns(keys.times, "time", "times");
        lostSigns(keys.values, "value", "values");
        if (version(KWKeyFramedChannel::classObject()) >= 1)
            return;
        const std::string why = ": a keyframed channel of version 0 has none";
        if (channel.keyFrameChannelMode() != KWKeyFrameModeHermite)
            lose(place.path, "its mode" + why);
        if (channel.repeatMode() != KWRepeatModeNone)
            lose(place.path, "its repeat mode" + why);
    }

    void searchRecords(const KWDocument::Place& place, const KWChannelKeys& keys) {
        const auto isZero = [](float value) { return std::bit_cast<std::uint32_t>(value) == 0; };
        const auto reserved = indicesWhere(keys.shapes.size(), [&](std::size_t k) {
            const auto& floats = keys.shapes[k].reserved;
            return !std::all_of(std::begin(floats), std::end(floats), isZero);
        });
        const auto shaped = indicesWhere(keys.shapes.size(), [&](std::size_t k) {
            const HJHermiteParam& shape = keys.shapes[k];
            return !isZero(shape.tension) || !isZero(shape.bias) || !isZero(shape.continuity);
        });
        const bool hasNoShapes = _isSequential && version(KWKeyFramedChannel::classObject()) < 1;
        if (hasNoShapes && !shaped.empty())
            lose(place.path, counted(shaped.size(), "shape", "shapes") + atKeys(shaped) +
                                 ": a keyframed channel of version 0 has none");
        if ((hasNoShapes || !_isSequential) && !reserved.empty())
            lose(place.path, "the reserved floats of " +
                                 counted(reserved.size(), "shape", "shapes") + atKeys(reserved) +
                                 (_isSequential ? ": a keyframed channel of version 0 has none"
                                                : ": a keyed archive has none"));
    }

    const KWDocument& _document;
    bool _isSequential;
    bool _wasSequential;
    KWClassVersions _versions;
    std::unordered_set<const KWChannel*> _carried;
    /// In the order of the archive.
    std::vector<std::shared_ptr<const KWAlgebricChannel>> _algebric;
    KWConversionLosses _found;
};

} // namespace

KWConversionLosses kwConversionLosses(const KWDocument& document, KWDocument::Form form,
                                      const KWClassVersions& versions) {
    return Search(document, form, versions).result();
}
