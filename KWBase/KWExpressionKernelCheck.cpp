#include <KWBase/KWExpressionCode.h>
#include <KWBase/KWExpressionKernels.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <initializer_list>

namespace {

/// Values at which a kernel and a function are compared.
class Samples {
  public:
    /// Specials, and floats of every kind.
    Samples() {
        addBits({0x00000000, 0x80000000, 0x00000001, 0x80000001, 0x007fffff, 0x00800000, 0x80800000,
                 0x3f800000, 0xbf800000, 0x3f7fffff, 0x3f800001, 0x7f7fffff, 0xff7fffff, 0x7f800000,
                 0xff800000, 0x7fc00000, 0xffc00000, 0x7f812345, 0xffd12345, 0x7fffffff});
        std::uint32_t bits = 0;
        for (int k = 0; k < 700; ++k)
            addBits({bits += 0x9e3779b1});
    }

    void addBits(std::initializer_list<std::uint32_t> list) {
        for (const std::uint32_t bits : list)
            _values[_count++] = std::bit_cast<float>(bits);
    }

    /// As many values between -limit and limit as there is room for.
    void fillWithin(float limit) {
        std::uint32_t fraction = 0;
        while (_count < _values.size()) {
            fraction += 0x9e3779b1;
            _values[_count++] = (static_cast<float>(fraction) * 0x1p-31f - 1) * limit;
        }
    }

    bool agree(KWExpressionKernels::Unary kernel, float (*function)(float)) const {
        std::array<float, size> results;
        kernel(_values.data(), results.data(), size);
        return std::equal(_values.begin(), _values.end(), results.begin(),
                          [function](float value, float result) {
                              return std::bit_cast<std::uint32_t>(function(value)) ==
                                     std::bit_cast<std::uint32_t>(result);
                          });
    }

  private:
    static constexpr std::size_t size = 2048;
    static_assert(size % KWExpressionKernels::step == 0);

    std::array<float, size> _values;
    std::size_t _count = 0;
};

// In each case: floats for which the kernel's result depends on multiply-add being fused, then
// floats whose result is not the nearest one, which a library with another algorithm would answer.

Samples samplesOfExp() {
    Samples samples;
    samples.addBits({0x4202422f, 0xc27c65d9});
    samples.addBits({0x426de54f, 0x4130a870, 0xbfc3da27, 0x42966cad, 0x42379410, 0xc216489b,
                     0xc2481e61, 0xc2379bd2});
    samples.addBits({0x42b17217, 0x42b17218, 0x42b17219, 0xc2aeac4f, 0xc2aeac50, 0xc2cff1b4,
                     0xc2cff1b5, 0xc2cff1b6}); // where results become infinite, subnormal and 0
    samples.fillWithin(105);
    return samples;
}

Samples samplesOfLn() {
    Samples samples;
    samples.addBits({0x40ba0f3a, 0x3f9ae440, 0x3f7b4adf, 0x3f2bda06, 0x402d61b8, 0x3f895ce4,
                     0x3fbb318b, 0x4099d9e8});
    samples.fillWithin(20);
    return samples;
}

Samples samplesOfSin() {
    Samples samples;
    samples.addBits({0x4255b0a9, 0x42a35c07, 0x42a35d44, 0x42a97360, 0x42cf5854, 0x42e87a55});
    samples.addBits({0x4144cb39, 0x41e018dd, 0xc19206b4, 0xc2a912c2, 0x40b0ee4f, 0xc22da2f6,
                     0x42482bba, 0x41cd30d2});
    samples.addBits({0x3f490fda, 0x3f490fdb, 0x3f490fdc, 0x42efffff, 0x42f00000, 0x42f00001});
    samples.fillWithin(125);
    return samples;
}

Samples samplesOfCos() {
    Samples samples;
    samples.addBits({0x418a3adb, 0x418a3adc, 0x418a3add, 0x418a3ade, 0x41bc76d9, 0x4202eb4b,
                     0x42687a55, 0x4280ce28});
    samples.addBits({0x42ba00c5, 0x418561cb, 0x419ee9eb, 0x4086868d, 0xc2a5424f, 0xc2135d3f,
                     0xc2ba4adf, 0x42943e8d});
    samples.addBits({0x3f490fda, 0x3f490fdb, 0x3f490fdc, 0x42efffff, 0x42f00000, 0x42f00001});
    samples.fillWithin(125);
    return samples;
}

/// Where squares, cubes, fourth powers, reciprocals, reciprocals of squares and square roots lie
/// nearest to the middle between two floats, or exactly there.
constexpr std::array<std::uint32_t, 54> closeCalls{
    0x00000000, 0x80000000, 0x00000001, 0x80000001, 0x007fffff, 0x00800000, 0x3f800000, 0xbf800000,
    0x7f7fffff, 0xff7fffff, 0x7f800000, 0xff800000, 0x7fc00000, 0xffc00000, 0x40490fdb, 0xc2f6e979,
    0x3f800800, 0x3f801800, 0x3f802800, 0x3f803800, 0xbf804800, 0xbf805800, 0x3f808000, 0x3f818000,
    0x3f828000, 0xbf838000, 0x3f820000, 0x3f860000, 0x3f8a0000, 0xbf8e0000, 0x3ff38be3, 0x3f94a7f2,
    0x3fde0d14, 0x3faf3c99, 0x3fffffff, 0x3ffe01ff, 0xbffc3237, 0x3ff0ff0f, 0x3ff02a3b, 0x3ff00ff1,
    0x3fd1da38, 0x3fb479ca, 0x3faf3762, 0x3fa401cc, 0xbf96723a, 0x3fdc1161, 0x407fffff, 0x3f800001,
    0x407ffffd, 0x3ffc114a, 0x406e9372, 0x3f800003, 0x40551dbf, 0x405ae03b};

bool isPower(float (*shortForm)(float), double exponent, double (*pow)(double, double)) {
    return std::all_of(closeCalls.begin(), closeCalls.end(), [=](std::uint32_t bits) {
        const auto base = std::bit_cast<float>(bits);
        const float found = KWExpressionResult(shortForm(base));
        const float wanted =
            KWExpressionResult(static_cast<float>(pow(static_cast<double>(base), exponent)));
        const bool isFault = base < 0 && exponent == 0.5;
        return isFault ||
               std::bit_cast<std::uint32_t>(found) == std::bit_cast<std::uint32_t>(wanted);
    });
}

} // namespace

KWExpressionPowers KWExpressionPowers::compare(double (*pow)(double, double)) {
    return {isPower([](float a) { return a; }, 1, pow),
            isPower([](float a) { return a * a; }, 2, pow),
            isPower(KWExpressionCube, 3, pow),
            isPower(KWExpressionFourthPower, 4, pow),
            isPower([](float a) { return 1 / a; }, -1, pow),
            isPower(KWExpressionReciprocalSquare, -2, pow),
            isPower(KWExpressionHalfPower, 0.5, pow)};
}

const KWExpressionPowers& KWExpressionPowers::atHand() {
    static const KWExpressionPowers powers =
        compare([](double base, double exponent) { return std::pow(base, exponent); });
    return powers;
}

const KWExpressionLibrary& KWExpressionLibrary::atHand() {
    static constexpr KWExpressionLibrary library = {
        [](float a) { return std::sin(a); },
        [](float a) { return std::cos(a); },
        [](float a) { return std::exp(a); },
        [](float a) { return std::log(a); },
    };
    return library;
}

KWExpressionChecked KWExpressionChecked::compare(const KWExpressionKernels& kernels,
                                                 const KWExpressionLibrary& library) {
    return {&kernels,
            library,
            samplesOfSin().agree(kernels.sin, library.sin),
            samplesOfCos().agree(kernels.cos, library.cos),
            samplesOfExp().agree(kernels.exp, library.exp),
            samplesOfLn().agree(kernels.ln, library.ln)};
}

const KWExpressionChecked& KWExpressionChecked::atHand() {
    static const KWExpressionChecked checked =
        compare(KWExpressionKernels::best(), KWExpressionLibrary::atHand());
    return checked;
}
