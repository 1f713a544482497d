#include <KWFoundation/KWText.h>

#include <apps/common/Bake.h>
#include <apps/common/Errors.h>
#include <apps/common/Json.h>
#include <apps/common/Text.h>

#include <algorithm>
#include <cmath>

namespace {

void checkCount(double steps, const std::string& option, double value) {
    // Beyond this the steps are no longer told apart.
    constexpr std::int64_t largest = 9'000'000'000'000'000;
    if (!(steps < static_cast<double>(largest)))
        throw UseError(option + " " + KWExactStringFromDouble(value) +
                       " over this range gives more than " + std::to_string(largest) + " times");
}

/// Writes lines of values in one of the formats.
class RowWriter {
  public:
    virtual ~RowWriter() = default;
    virtual void appendHeading(std::string&) const {}
    virtual void appendFooting(std::string&) const {}
    /// `values` holds a block a channel; the row takes one of each, `stride` apart.
    virtual void appendRow(std::string& text, float time, const float* values,
                           std::size_t stride) const = 0;
};

/// A field as RFC 4180 quotes it.
std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? std::string("\"\"") : std::string(1, c);
    return field + "\"";
}

class CSVWriter final : public RowWriter {
  public:
    explicit CSVWriter(const std::vector<Place>& places) : _count(places.size()) {
        _heading = "time";
        for (const Place& place : places)
            _heading += "," + csvField(place.path);
        _heading += "\n";
    }
    void appendHeading(std::string& text) const override { text += _heading; }
    void appendRow(std::string& text, float time, const float* values,
                   std::size_t stride) const override {
        appendFloat(text, time);
        for (std::size_t c = 0; c < _count; ++c) {
            text += ',';
            appendFloat(text, values[c * stride]);
        }
        text += '\n';
    }

  private:
    std::size_t _count;
    std::string _heading;
};

class JSONLinesWriter : public RowWriter {
  public:
    explicit JSONLinesWriter(const std::vector<Place>& places) {
        for (const Place& place : places)
            _keys.push_back((_keys.empty() ? "" : ",") + jsonText(place.path) + ":");
    }
    void appendRow(std::string& text, float time, const float* values,
                   std::size_t stride) const override {
        text += "{\"time\":";
        appendNumber(text, time);
        text += ",\"values\":{";
        for (std::size_t c = 0; c < _keys.size(); ++c) {
            text += _keys[c];
            appendNumber(text, values[c * stride]);
        }
        text += "}}\n";
    }

  private:
    static void appendNumber(std::string& text, float value) {
        if (std::isfinite(value))
            appendFloat(text, value);
        else
            text += "null";
    }

    std::vector<std::string> _keys;
};

class JSONWriter final : public JSONLinesWriter {
  public:
    using JSONLinesWriter::JSONLinesWriter;
    void appendHeading(std::string& text) const override { text += "["; }
    void appendRow(std::string& text, float time, const float* values,
                   std::size_t stride) const override {
        text += text == "[" ? "\n" : ",\n";
        JSONLinesWriter::appendRow(text, time, values, stride);
        text.pop_back(); // the end of a line
    }
    void appendFooting(std::string& text) const override { text += "\n]\n"; }
};

std::unique_ptr<RowWriter> writerFor(BakeFormat format, const std::vector<Place>& places) {
    if (format == BakeFormat::jsonl)
        return std::make_unique<JSONLinesWriter>(places);
    if (format == BakeFormat::json)
        return std::make_unique<JSONWriter>(places);
    return std::make_unique<CSVWriter>(places);
}

} // namespace

void evaluate(const Place& place, std::span<const float> times, std::span<float> values) {
    try {
        place.channel->valuesForTimes(times, values);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& batchError) {
        const auto fail = [&place](const std::string& where, const std::exception& error) {
            throw DataError("channel " + inQuotes(place.path) + " cannot be evaluated" + where +
                            ": " + error.what());
        };
        for (const float time : times) {
            try {
                place.channel->valueForTime(KWTime(time));
            } catch (const std::exception& error) {
                fail(" at " + floatText(time), error);
            }
        }
        fail("", batchError);
    }
    const std::int32_t type = place.channel->unitType();
    if (type == KWUnitTypeLength || type == KWUnitTypeAngle)
        for (float& value : values)
            value = place.channel->convertValueToUserUnit(value);
}

TimeSteps TimeSteps::atRate(double from, double to, double rate) {
    if (!(rate > 0))
        throw UseError("--rate needs a number above 0");
    if (to < from)
        throw UseError("--to is before --from");
    const double steps = (to - from) * rate;
    checkCount(steps, "--rate", rate);
    TimeSteps times;
    times._from = from;
    times._factor = rate;
    times._isRate = true;
    times._count = static_cast<std::uint64_t>(std::floor(steps + 1e-6)) + 1;
    return times;
}

TimeSteps TimeSteps::withStep(double from, double to, double step) {
    if (!(step > 0))
        throw UseError("--step needs a number above 0");
    if (to < from)
        throw UseError("--to is before --from");
    const double steps = (to - from) / step;
    checkCount(steps, "--step", step);
    TimeSteps times;
    times._from = from;
    times._factor = step;
    times._count = static_cast<std::uint64_t>(std::floor(steps + 1e-6)) + 1;
    return times;
}

float TimeSteps::time(std::uint64_t k) const {
    const auto number = static_cast<double>(k);
    return static_cast<float>(_from + (_isRate ? number / _factor : number * _factor));
}

bool bake(const std::vector<Place>& places, const TimeSteps& steps, BakeFormat format,
          const std::function<void(std::string_view)>& write,
          const std::function<bool(std::uint64_t)>& progress) {
    if (places.empty())
        throw DataError("there is no channel to evaluate");
    const std::unique_ptr<RowWriter> writer = writerFor(format, places);
    // Blocks that stay within a few megabytes, however many channels there are.
    const std::size_t blockLength =
        std::clamp<std::size_t>((std::size_t{1} << 20) / places.size(), 1, 4096);
    std::vector<float> times;
    std::vector<float> values(blockLength * places.size());
    std::string text;

    for (std::uint64_t first = 0; first < steps.count(); first += blockLength) {
        times.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(blockLength, steps.count() - first)));
        for (std::size_t i = 0; i < times.size(); ++i)
            times[i] = steps.time(first + i);
        for (std::size_t c = 0; c < places.size(); ++c)
            evaluate(places[c], times, std::span(values).subspan(c * blockLength, times.size()));

        // Only now: a document that cannot be evaluated at all leaves no heading either.
        text.clear();
        if (first == 0)
            writer->appendHeading(text);
        for (std::size_t i = 0; i < times.size(); ++i)
            writer->appendRow(text, times[i], values.data() + i, blockLength);
        if (first + times.size() >= steps.count())
            writer->appendFooting(text);
        write(text);
        if (!progress(first + times.size()))
            return false;
    }
    return true;
}
