#include "GestureTestSupport.h"

#include <KWBase/KWUnitController.h>

#include <algorithm>
#include <map>
#include <random>

namespace {

/// A key of the plain model.
struct PlainKey {
    float value;
    KWData record;
};

/// The rules of editing in the plainest form: the keys as a map, everything worked out anew from
/// the start of the drag for each event.
class PlainEditor {
  public:
    PlainEditor(const KWKeyFramedChannel& channel, float width, float height)
        : _channel(channel), _width(width), _height(height) {}

    std::map<float, PlainKey> keys;
    std::vector<float> selection;
    KWDisplayedRange range;
    std::int32_t mode = 0;
    bool snaps = false;
    std::uint32_t xCount = 42;
    std::uint32_t yCount = 21;
    int notices = 0;
    bool isActive = false;

    void press(float x, float y, bool shift) {
        _keysAtPress = keys;
        _selectionAtPress = selection;
        _anchor = range;
        _x0 = x;
        _y0 = y;
        isActive = true;
        _gesture = 'm';
        if (mode == 1) {
            const float t = range.hMin + (range.hMax - range.hMin) / _width * x;
            keys[t] = {_channel.convertValueFromUserUnit(valueOfY(y)), KWData(36)};
            selection = {t};
            startMoving();
        } else if (mode == 2) {
            _gesture = shift ? 'z' : 'p';
            _fixedTime = range.hMin + x * (range.hMax - range.hMin) / _width;
            _fixedValue = valueOfY(y);
        } else if (const auto hit = keyAt(x, y)) {
            dropDead();
            if (std::find(selection.begin(), selection.end(), *hit) == selection.end()) {
                if (!shift)
                    selection.clear();
                selection.push_back(*hit);
                ++notices;
            }
            startMoving();
        } else {
            _gesture = 's';
            if (shift)
                dropDead();
            else
                selection.clear();
            _kept = selection;
        }
    }

    void drag(float x, float y) {
        if (!isActive)
            return;
        const float dt = (x - _x0) * (range.hMax - range.hMin) / _width;
        const float dv = (y - _y0) * (range.vMax - range.vMin) / _height;
        if (_gesture == 'm')
            moveBy(dt, dv);
        else if (_gesture == 's')
            select(x, y);
        else if (_gesture == 'p')
            range = {_anchor.hMin - dt, _anchor.hMax - dt, _anchor.vMin - dv, _anchor.vMax - dv};
        else
            range = {zoomed(_anchor.hMin, _fixedTime, x - _x0),
                     zoomed(_anchor.hMax, _fixedTime, x - _x0),
                     zoomed(_anchor.vMin, _fixedValue, y - _y0),
                     zoomed(_anchor.vMax, _fixedValue, y - _y0)};
    }

    void end() {
        if (isActive && _gesture == 's')
            ++notices;
        isActive = false;
    }

    void cancel() {
        if (!isActive)
            return;
        keys = _keysAtPress;
        selection = _selectionAtPress;
        range = _anchor;
        isActive = false;
    }

    /// Of a key that somebody else sets or removes.
    bool endsWithEdits() const { return _gesture == 'm' || _gesture == 's'; }

    /// The first key whose square contains the point.
    std::optional<float> keyAt(float x, float y) const {
        for (const auto& [time, key] : keys) {
            if (!(range.hMin <= time && time <= range.hMax))
                continue;
            const float value = _channel.convertValueToUserUnit(key.value);
            const float kx = (time - range.hMin) * _width / (range.hMax - range.hMin);
            const float ky = (value - range.vMin) * _height / (range.vMax - range.vMin);
            const float left = std::floor(kx - 3.5f) + 0.5f;
            const float bottom = std::floor(ky - 3.5f) + 0.5f;
            if (left <= x && x < left + 7 && bottom < y && y <= bottom + 7)
                return time;
        }
        return std::nullopt;
    }

    std::string contents() const {
        PlainChannel plain;
        std::string text;
        for (const auto& [time, key] : keys) {
            text += std::to_string(bitsOf(time)) + ":" + std::to_string(bitsOf(key.value)) + ":";
            for (const std::byte b : key.record)
                text += std::to_string(std::to_integer<int>(b)) + ",";
            text += "\n";
        }
        return text;
    }

  private:
    float valueOfY(float y) const { return range.vMin + y * (range.vMax - range.vMin) / _height; }
    static float zoomed(float bound, float fixed, float distance) {
        const double factor = std::clamp(static_cast<double>(distance) / 100 + 1, 0.01,
                                         static_cast<double>(std::numeric_limits<float>::max()));
        return static_cast<float>(static_cast<double>(bound - fixed) / factor +
                                  static_cast<double>(fixed));
    }
    void dropDead() {
        std::erase_if(selection, [this](float time) { return keys.count(time) == 0; });
    }
    bool isSelected(float time) const {
        return std::find(selection.begin(), selection.end(), time) != selection.end();
    }

    void startMoving() {
        _starts = selection;
        _moved = selection;
        _startKeys.clear();
        for (const float time : selection)
            _startKeys.push_back(keys.at(time));
        float minimum = -std::numeric_limits<float>::max();
        float maximum = std::numeric_limits<float>::max();
        for (auto key = keys.begin(); key != keys.end() && std::next(key) != keys.end(); ++key) {
            const float before = key->first;
            const float after = std::next(key)->first;
            if (!isSelected(before) && isSelected(after))
                minimum = std::max(minimum, before - after);
            if (isSelected(before) && !isSelected(after))
                maximum = std::min(maximum, after - before);
        }
        const float point = (range.hMax - range.hMin) / _width;
        _low = minimum < -point ? minimum + point : 0;
        _high = maximum > point ? maximum - point : 0;
        _halfX = 0.5f * findStep(range.hMin, range.hMax, 3, xCount);
        _halfY = 0.5f * findStep(range.vMin, range.vMax, 3, yCount);
    }
    void moveBy(float dt, float dv) {
        dt = _low > dt ? _low : std::min(_high, dt);
        for (const float time : _moved)
            keys.erase(time);
        _moved.clear();
        for (std::size_t i = 0; i < _starts.size(); ++i) {
            float time = _starts[i] + dt;
            float value = _channel.convertValueToUserUnit(_startKeys[i].value) + dv;
            if (snaps) {
                time = _halfX * static_cast<float>(static_cast<int>(std::rint(time / _halfX)));
                value = _halfY * static_cast<float>(static_cast<int>(std::rint(value / _halfY)));
            }
            keys[time] = {_channel.convertValueFromUserUnit(value), _startKeys[i].record};
            _moved.push_back(time);
        }
        selection = _moved;
    }
    void select(float x, float y) {
        const float perX = (range.hMax - range.hMin) / _width;
        const float perY = (range.vMax - range.vMin) / _height;
        const float dx = x - _x0;
        const float dy = y - _y0;
        const float left = range.hMin + (dx >= 0 ? _x0 : _x0 + dx) * perX;
        const float bottom = range.vMin + (dy >= 0 ? _y0 : _y0 + dy) * perY;
        const float low = _channel.convertValueFromUserUnit(bottom);
        const float high = _channel.convertValueFromUserUnit(bottom + std::fabs(dy) * perY);
        selection = _kept;
        for (const auto& [time, key] : keys)
            if (left <= time && time <= left + std::fabs(dx) * perX && low <= key.value &&
                key.value <= high && std::find(_kept.begin(), _kept.end(), time) == _kept.end())
                selection.push_back(time);
    }

    const KWKeyFramedChannel& _channel;
    float _width;
    float _height;
    char _gesture = 'm';
    float _x0 = 0;
    float _y0 = 0;
    KWDisplayedRange _anchor;
    std::map<float, PlainKey> _keysAtPress;
    std::vector<float> _selectionAtPress;
    std::vector<float> _kept;
    std::vector<float> _starts;
    std::vector<float> _moved;
    std::vector<PlainKey> _startKeys;
    float _low = 0;
    float _high = 0;
    float _halfX = 0;
    float _halfY = 0;
    float _fixedTime = 0;
    float _fixedValue = 0;
};

class KWChannelViewGesturesTest : public GestureTest {
  protected:
    float random(float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(engine);
    }
    bool chance(int percent) { return static_cast<int>(engine() % 100) < percent; }

    std::mt19937 engine{20'261};
};

} // namespace

TEST_F(KWChannelViewGesturesTest, RandomDragsFollowTheRules) {
    int gestures = 0;
    int cancelled = 0;
    int disturbed = 0;
    int overwritten = 0;
    for (int round = 0; round < 60; ++round) {
        restart();
        channel->removeAllKeyframes();
        channel->setUnitType(chance(50) ? KWUnitTypeNone : KWUnitTypeAngle);
        const bool isAngle = channel->unitType() == KWUnitTypeAngle;
        const float width = 331;
        const float height = 173;
        view->resize(331, 173);
        const float span = random(0.5f, 40);
        view->setDisplayedBounds(
            {random(-5, 5), isAngle ? -90.f : -2.f, span, isAngle ? 200.f : 5.f});
        PlainEditor plain(*channel, width, height);
        const HJRect shown = view->displayedBounds();
        plain.range = view->plotGeometry().range;
        for (int k = static_cast<int>(engine() % 14); k >= 0; --k) {
            const float time = shown.x + random(-0.1f, 1.1f) * shown.width;
            const float value =
                channel->convertValueFromUserUnit(shown.y + random(0, 1) * shown.height);
            const KWData record = recordWith(random(-1, 1), random(-1, 1), random(-1, 1));
            set(value, record, time);
            plain.keys[time] = {value, record};
        }
        for (int step = 0; step < 40; ++step) {
            // Settings, drawing, and a selection that may be out of date.
            plain.mode = chance(70) ? 0 : chance(50) ? 1 : 2;
            view->setEditingMode(plain.mode);
            plain.snaps = chance(40);
            view->setSnaps(plain.snaps);
            if (chance(20)) {
                plain.xCount = chance(50) ? 42 : static_cast<std::uint32_t>(1 + engine() % 9);
                plain.yCount = chance(50) ? 21 : static_cast<std::uint32_t>(1 + engine() % 9);
                view->setXGridCount(static_cast<int>(plain.xCount));
                view->setYGridCount(static_cast<int>(plain.yCount));
            }
            if (plain.mode != 2 && chance(10)) {
                view->setDisplayedBounds(shown);
                plain.range = view->plotGeometry().range;
            }
            view->grab();
            const bool shift = chance(40);
            const auto pixel = [this](float size) { return std::floor(random(0, size) * 4) / 4; };
            float x = pixel(width);
            float y = pixel(height);
            if (!plain.keys.empty() && chance(60)) {
                auto key = plain.keys.begin();
                std::advance(key, static_cast<std::ptrdiff_t>(engine() % plain.keys.size()));
                const QPointF near =
                    at(key->first, channel->convertValueToUserUnit(key->second.value));
                if (near.x() > 0 && near.x() < 331 && near.y() > 0 && near.y() < 173) {
                    x = static_cast<float>(std::round(near.x() + 0.25));
                    y = height - static_cast<float>(std::round(near.y()));
                }
            }
            const auto position = [&](float px, float py) {
                return QPointF(static_cast<double>(px), static_cast<double>(height - py));
            };
            pressAt(position(x, y), shift ? Qt::ShiftModifier : Qt::NoModifier);
            plain.press(x, y, shift);
            ++gestures;
            const int moves = static_cast<int>(engine() % 6);
            for (int k = 0; k < moves; ++k) {
                if (chance(3)) {
                    plain.snaps = !plain.snaps;
                    view->setSnaps(plain.snaps);
                }
                const float reach = chance(50) ? 8 : 400;
                const float toX = std::round((x + random(-reach, reach)) * 8) / 8;
                const float toY = std::round((y + random(-reach, reach)) * 8) / 8;
                if (where == position(toX, toY))
                    continue;
                const std::size_t before = plain.keys.size();
                move(position(toX, toY));
                plain.drag(toX, toY);
                overwritten += plain.keys.size() < before;
                if (chance(2)) {
                    const float time = random(shown.x, shown.x + shown.width);
                    set(1, time);
                    QCoreApplication::processEvents();
                    plain.keys[time] = {1, KWData(36)};
                    if (plain.endsWithEdits()) {
                        plain.end();
                        ++disturbed;
                    }
                }
            }
            EXPECT_EQ(view->isGestureActive(), plain.isActive);
            if (chance(20)) {
                cancelled += plain.isActive;
                escape();
                // What somebody else did during a pan stays.
                const auto keys = plain.keys;
                const bool keeps = !plain.endsWithEdits();
                plain.cancel();
                if (keeps)
                    plain.keys = keys;
            }
            release();
            plain.end();
            ASSERT_EQ(contentsOf(*channel), plain.contents()) << round << " " << step;
            ASSERT_EQ(selection(), plain.selection) << round << " " << step;
            ASSERT_EQ(view->plotGeometry().range, plain.range) << round << " " << step;
            ASSERT_EQ(delegate.count, plain.notices) << round << " " << step;
            if (chance(5)) {
                QKeyEvent event(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier,
                                QStringLiteral("\x7f"));
                QApplication::sendEvent(view.get(), &event);
                for (const float time : plain.selection)
                    plain.keys.erase(time);
                plain.selection.clear();
            }
        }
    }
    EXPECT_GT(cancelled, 100);
    EXPECT_GT(disturbed, 20);
    EXPECT_GT(overwritten, 20);
    EXPECT_EQ(gestures, 2400);
}

TEST_F(KWChannelViewGesturesTest, CancellingRestoresTheWholeChannelAfterAnyDrag) {
    for (int round = 0; round < 200; ++round) {
        restart();
        channel->removeAllKeyframes();
        for (int k = 0; k < 12; ++k)
            set(random(-2, 3), recordWith(random(-1, 1)), std::round(random(0, 10) * 4) / 4);
        view->setXGridCount(3);
        view->setSnaps(chance(80));
        view->setEditingMode(chance(70) ? 0 : 1);
        const std::string before = contentsOf(*channel);
        std::vector<KWTime> chosen = channel->allKeyframes();
        std::shuffle(chosen.begin(), chosen.end(), engine);
        chosen.resize(1 + engine() % chosen.size());
        view->setSelectedKeys(chosen);
        const auto timesBefore = selection();
        view->grab();
        manager->removeAllActions();
        QObject::connect(view.get(), &KWChannelView::gestureWillBegin,
                         [this] { channel->startManipulation(); });
        QObject::connect(view.get(), &KWChannelView::gestureDidEnd,
                         [this] { channel->stopManipulation(); });
        pressAt(at(chosen.front().time(), valueAt(chosen.front().time())));
        for (int k = 0; k < 6; ++k)
            dragBy(static_cast<double>(random(-150, 150)), static_cast<double>(random(-50, 50)));
        escape();
        ASSERT_EQ(contentsOf(*channel), before) << round;
        ASSERT_EQ(selection(), timesBefore) << round;
        ASSERT_FALSE(manager->canUndo()) << round;
    }
}
