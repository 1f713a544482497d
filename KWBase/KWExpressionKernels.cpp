#include <KWBase/KWExpressionKernels.h>

#include <limits>

// AVX3_DL adds nothing to AVX3 that is used here.
#define HWY_DISABLED_TARGETS HWY_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "KWBase/KWExpressionKernels.cpp"
#include <hwy/foreach_target.h> // comes first
#include <hwy/highway.h>

// The four functions repeat, in lanes of double, what glibc's sinf, cosf, expf and logf compute:
// the same reduction, tables and polynomials. Where the processor has fused multiply-add glibc
// chooses code with it, at the places where MulAdd and its kin stand below; those are separate
// operations on the targets without it. Nothing else here is fused.

HWY_BEFORE_NAMESPACE();
namespace KWExpressionTargets {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using Q = hn::RebindToUnsigned<D>;
using L = hn::RebindToSigned<D>;
// As many floats and integers as there are doubles in a vector.
using F = hn::Rebind<float, D>;
using U = hn::Rebind<std::uint32_t, D>;
using I = hn::Rebind<std::int32_t, D>;
using VD = hn::Vec<D>;
using VQ = hn::Vec<Q>;
using VF = hn::Vec<F>;
using VU = hn::Vec<U>;

/// Added to a double, leaves the nearest whole number in its low bits.
constexpr double toInteger = 0x1.8p+52;

/// One of `size` doubles for each lane; a power of two.
template <std::size_t size>
HWY_INLINE VD lookUp(const double* table, VQ index) {
    const D d;
    const Q q;
#if HWY_TARGET == HWY_AVX3
    // Permuting registers costs a fraction of gathering.
    const auto lane = hn::IndicesFromVec(d, hn::And(index, hn::Set(q, 7)));
    const auto part = [&](std::size_t k) HWY_ATTR {
        return hn::TableLookupLanes(hn::LoadU(d, table + 8 * k), lane);
    };
    const auto bit = [&](std::uint64_t value) HWY_ATTR {
        return hn::RebindMask(d, hn::TestBit(index, hn::Set(q, value)));
    };
    const auto low = hn::IfThenElse(bit(8), part(1), part(0));
    if constexpr (size == 16)
        return low;
    else
        return hn::IfThenElse(bit(16), hn::IfThenElse(bit(8), part(3), part(2)), low);
#else
    return hn::GatherIndex(d, table, hn::BitCast(L(), hn::And(index, hn::Set(q, size - 1))));
#endif
}

/// 2 to the k / 32, less k / 32 in the exponent field.
alignas(64) constexpr double expTable[32] = {
    0x1.0000000000000p+0, 0x1.fd9b0d3158574p-1, 0x1.fb5586cf9890fp-1, 0x1.f9301d0125b51p-1,
    0x1.f72b83c7d517bp-1, 0x1.f54873168b9aap-1, 0x1.f387a6e756238p-1, 0x1.f1e9df51fdee1p-1,
    0x1.f06fe0a31b715p-1, 0x1.ef1a7373aa9cbp-1, 0x1.edea64c123422p-1, 0x1.ece086061892dp-1,
    0x1.ebfdad5362a27p-1, 0x1.eb42b569d4f82p-1, 0x1.eab07dd485429p-1, 0x1.ea47eb03a5585p-1,
    0x1.ea09e667f3bcdp-1, 0x1.e9f75e8ec5f74p-1, 0x1.ea11473eb0187p-1, 0x1.ea589994cce13p-1,
    0x1.eace5422aa0dbp-1, 0x1.eb737b0cdc5e5p-1, 0x1.ec49182a3f090p-1, 0x1.ed503b23e255dp-1,
    0x1.ee89f995ad3adp-1, 0x1.eff76f2fb5e47p-1, 0x1.f199bdd85529cp-1, 0x1.f3720dcef9069p-1,
    0x1.f5818dcfba487p-1, 0x1.f7c97337b9b5fp-1, 0x1.fa4afa2a490dap-1, 0x1.fd0765b6e4540p-1,
};

struct Exp {
    HWY_INLINE VF operator()(VF x) const {
        const F f;
        const D d;
        const Q q;
        constexpr double scale = 0x1.71547652b82fep+0 * 32;
        constexpr double c0 = 0x1.c6af84b912394p-5 / 32 / 32 / 32;
        constexpr double c1 = 0x1.ebfce50fac4f3p-3 / 32 / 32;
        constexpr double c2 = 0x1.62e42ff0c52d6p-1 / 32;

        const VF bounded = hn::Min(hn::Max(x, hn::Set(f, -110.0f)), hn::Set(f, 89.0f));
        const VD xd = hn::PromoteTo(d, bounded);
        VD k = hn::MulAdd(xd, hn::Set(d, scale), hn::Set(d, toInteger));
        const VQ bits = hn::BitCast(q, k);
        k = hn::Sub(k, hn::Set(d, toInteger));
        const VD r = hn::MulSub(xd, hn::Set(d, scale), k);
        const VQ power = hn::BitCast(q, lookUp<32>(expTable, bits));
        const VD s = hn::BitCast(d, hn::Add(power, hn::ShiftLeft<47>(bits)));
        const VD z = hn::MulAdd(hn::Set(d, c0), r, hn::Set(d, c1));
        const VD y = hn::MulAdd(hn::Set(d, c2), r, hn::Set(d, 1.0));
        const VF result = hn::DemoteTo(f, hn::Mul(hn::MulAdd(z, hn::Mul(r, r), y), s));
        // Beyond the largest finite result, and NaN.
        const VF other = hn::Add(x, hn::Set(f, std::numeric_limits<float>::infinity()));
        return hn::IfThenElse(hn::Le(x, hn::Set(f, 0x1.62e42ep6f)), result, other);
    }
};

/// 1 / c for a c near the middle of each sixteenth, and the logarithm of c.
alignas(64) constexpr double reciprocalTable[16] = {0x1.661ec79f8f3bep+0, 0x1.571ed4aaf883dp+0,
                                                    0x1.49539f0f010bp+0,  0x1.3c995b0b80385p+0,
                                                    0x1.30d190c8864a5p+0, 0x1.25e227b0b8eap+0,
                                                    0x1.1bb4a4a1a343fp+0, 0x1.12358f08ae5bap+0,
                                                    0x1.0953f419900a7p+0, 0x1p+0,
                                                    0x1.e608cfd9a47acp-1, 0x1.ca4b31f026aap-1,
                                                    0x1.b2036576afce6p-1, 0x1.9c2d163a1aa2dp-1,
                                                    0x1.886e6037841edp-1, 0x1.767dcf5534862p-1};
alignas(64) constexpr double lnTable[16] = {-0x1.57bf7808caadep-2, -0x1.2bef0a7c06ddbp-2,
                                            -0x1.01eae7f513a67p-2, -0x1.b31d8a68224e9p-3,
                                            -0x1.6574f0ac07758p-3, -0x1.1aa2bc79c81p-3,
                                            -0x1.a4e76ce8c0e5ep-4, -0x1.1973c5a611cccp-4,
                                            -0x1.252f438e10c1ep-5, 0x0p+0,
                                            0x1.aa5aa5df25984p-5,  0x1.c5e53aa362eb4p-4,
                                            0x1.526e57720db08p-3,  0x1.bc2860d224770p-3,
                                            0x1.1058bc8a07ee1p-2,  0x1.4043057b6ee09p-2};

struct Ln {
    HWY_INLINE VF operator()(VF x) const {
        const F f;
        const U u;
        const VU bits = hn::BitCast(u, x);
        const auto smallest = hn::Set(u, 0x00800000);
        const auto isSpecial = hn::Gt(hn::Sub(bits, smallest), hn::Set(u, 0x7effffff));
        if (hn::AllFalse(u, isSpecial)) [[likely]]
            return ofNormal(bits);
        const VU scaled =
            hn::Sub(hn::BitCast(u, hn::Mul(x, hn::Set(f, 0x1p23f))), hn::Set(u, 23u << 23));
        VF result = ofNormal(hn::IfThenElse(hn::Lt(bits, smallest), scaled, bits));
        const VF zero = hn::Zero(f);
        const VF infinity = hn::Set(f, std::numeric_limits<float>::infinity());
        result = hn::IfThenElse(hn::Eq(x, zero), hn::Neg(infinity), result);
        result = hn::IfThenElse(hn::Lt(x, zero), hn::Div(hn::Sub(x, x), hn::Sub(x, x)), result);
        return hn::IfThenElse(hn::Lt(x, infinity), result, hn::Add(x, x));
    }

  private:
    static HWY_INLINE VF ofNormal(VU bits) {
        const D d;
        const U u;
        const VU above = hn::Sub(bits, hn::Set(u, 0x3f330000));
        const VQ index = hn::PromoteTo(Q(), hn::ShiftRight<19>(above));
        const VD k = hn::PromoteTo(d, hn::ShiftRight<23>(hn::BitCast(I(), above)));
        const VU mantissa = hn::Sub(bits, hn::And(above, hn::Set(u, 0xff800000)));
        const VD z = hn::PromoteTo(d, hn::BitCast(F(), mantissa));
        const VD one = hn::Set(d, 1.0);
        const VD r = hn::MulSub(z, lookUp<16>(reciprocalTable, index), one);
        const VD y0 = hn::MulAdd(k, hn::Set(d, 0x1.62e42fefa39efp-1), lookUp<16>(lnTable, index));
        const VD r2 = hn::Mul(r, r);
        VD y = hn::MulAdd(hn::Set(d, 0x1.5575b0be00b6ap-2), r, hn::Set(d, -0x1.ffffef20a4123p-2));
        y = hn::MulAdd(hn::Set(d, -0x1.00ea348b88334p-2), r2, y);
        y = hn::MulAdd(y, r2, hn::Add(y0, r));
        return hn::DemoteTo(F(), y);
    }
};

/// The bits of 4 / pi, in overlapping words.
constexpr std::uint32_t fourByPi[24] = {
    0xa2,       0xa2f9,     0xa2f983,   0xa2f9836e, 0xf9836e4e, 0x836e4e44, 0x6e4e4415, 0x4e441529,
    0x441529fc, 0x1529fc27, 0x29fc2757, 0xfc2757d1, 0x2757d1f5, 0x57d1f534, 0xd1f534dd, 0xf534ddc0,
    0x34ddc0db, 0xddc0db62, 0xc0db6295, 0xdb629599, 0x6295993c, 0x95993c43, 0x993c4390, 0x3c439041};

/// The sine of x plus so many quarters of a turn.
template <std::uint64_t quarters>
struct Sine {
    HWY_INLINE VF operator()(VF x) const {
        const F f;
        const D d;
        const Q q;
        const U u;
        const VD xd = hn::PromoteTo(d, x);
        VD turn = hn::MulAdd(xd, hn::Set(d, 0x1.45F306DC9C883p-1), hn::Set(d, toInteger));
        VQ n = hn::BitCast(q, turn);
        turn = hn::Sub(turn, hn::Set(d, toInteger));
        VD r = hn::NegMulAdd(turn, hn::Set(d, 0x1.921FB54442D18p0), xd);

        const VU bits = hn::And(hn::BitCast(u, x), hn::Set(u, 0x7fffffff));
        const auto isLarge = hn::Gt(bits, hn::Set(u, 0x42efffff)); // from 120 on
        if (!hn::AllFalse(u, isLarge)) [[unlikely]]
            reduceLarge(x, bits, n, r);
        n = hn::Add(n, hn::Set(q, quarters));

        const VD r2 = hn::Mul(r, r);
        const auto isOdd = hn::RebindMask(d, hn::TestBit(n, hn::Set(q, 1)));
        const VD value = hn::IfThenElse(isOdd, cosineSeries(r2), sineSeries(r, r2));
        const VQ sign = hn::And(hn::ShiftLeft<62>(n), hn::Set(q, 1ull << 63));
        VF result = hn::DemoteTo(f, hn::Xor(value, hn::BitCast(d, sign)));
        if constexpr (quarters == 0)
            result = hn::IfThenElse(hn::Eq(x, hn::Zero(f)), x, result); // keeps the sign of -0
        if (!hn::AllFalse(u, isLarge)) [[unlikely]] {
            // NaN stays the one that it is; infinity makes one.
            const auto isFinite = hn::Lt(bits, hn::Set(u, 0x7f800000));
            result = hn::IfThenElse(hn::RebindMask(f, isFinite), result, hn::Sub(x, x));
        }
        return result;
    }

  private:
    static HWY_INLINE VD sineSeries(VD r, VD r2) {
        const D d;
        const VD r3 = hn::Mul(r, r2);
        const VD s1 =
            hn::MulAdd(r2, hn::Set(d, -0x1.994eb3774cf24p-13), hn::Set(d, 0x1.1107605230bc4p-7));
        const VD s = hn::MulAdd(r3, hn::Set(d, -0x1.555545995a603p-3), r);
        return hn::MulAdd(hn::Mul(r3, r2), s1, s);
    }

    static HWY_INLINE VD cosineSeries(VD r2) {
        const D d;
        const VD r4 = hn::Mul(r2, r2);
        const VD c2 =
            hn::MulAdd(r2, hn::Set(d, 0x1.99343027bf8c3p-16), hn::Set(d, -0x1.6c087e89a359dp-10));
        const VD c1 = hn::MulAdd(r2, hn::Set(d, -0x1.ffffffd0c621cp-2), hn::Set(d, 1.0));
        const VD c = hn::MulAdd(r4, hn::Set(d, 0x1.55553e1068f19p-5), c1);
        return hn::MulAdd(hn::Mul(r4, r2), c2, c);
    }

    /// The product with as many bits of 4 / pi as matter, for the lanes from 120 on.
    static HWY_NOINLINE void reduceLarge(VF x, VU bits, VQ& n, VD& r) {
        const D d;
        const Q q;
        const U u;
        const I i;
        const VU shift = hn::And(hn::ShiftRight<23>(bits), hn::Set(u, 7));
        const VU digits = hn::Or(hn::And(bits, hn::Set(u, 0x7fffff)), hn::Set(u, 0x800000));
        const VQ m = hn::PromoteTo(q, hn::Shl(digits, shift));
        const auto word = hn::BitCast(i, hn::And(hn::ShiftRight<26>(bits), hn::Set(u, 15)));
        const auto part = [&](std::size_t k) HWY_ATTR {
            return hn::Mul(m, hn::PromoteTo(q, hn::GatherIndex(u, fourByPi + k, word)));
        };
        VQ turn = hn::Or(hn::ShiftRight<32>(part(8)), hn::ShiftLeft<32>(part(0)));
        turn = hn::Add(turn, part(4));
        const VQ nearest = hn::ShiftRight<62>(hn::Add(turn, hn::Set(q, 1ull << 61)));
        const VQ rest = hn::Sub(turn, hn::ShiftLeft<62>(nearest));
        VD angle =
            hn::Mul(hn::ConvertTo(d, hn::BitCast(L(), rest)), hn::Set(d, 0x1.921FB54442D18p-62));

        // The angle is that of |x|: turned back for a negative one.
        const VD xd = hn::PromoteTo(d, x);
        const auto isNegative = hn::Lt(xd, hn::Zero(d));
        angle = hn::IfThenElse(isNegative, hn::Neg(angle), angle);
        const VQ turns =
            hn::IfThenElse(hn::RebindMask(q, isNegative), hn::Sub(hn::Zero(q), nearest), nearest);
        const auto isLarge = hn::Ge(hn::Abs(xd), hn::Set(d, 120.0));
        r = hn::IfThenElse(isLarge, angle, r);
        n = hn::IfThenElse(hn::RebindMask(q, isLarge), turns, n);
    }
};

template <class Function>
void byFunction(const float* a, float* out, std::size_t count) {
    const F f;
    for (std::size_t k = 0; k < count; k += hn::Lanes(f))
        hn::StoreU(Function()(hn::LoadU(f, a + k)), f, out + k);
}

// Blocks, in whole vectors of float.

using S = hn::ScalableTag<float>;
using B = hn::RebindToUnsigned<S>;
using VS = hn::Vec<S>;

template <class Operation>
HWY_INLINE void forEach(std::size_t count, Operation operation) {
    for (std::size_t k = 0; k < count; k += hn::Lanes(S()))
        operation(k);
}

template <class Operation>
HWY_INLINE void map(const float* a, float* out, std::size_t count, Operation operation) {
    const S s;
    forEach(count, [=](std::size_t k)
                       HWY_ATTR { hn::StoreU(operation(hn::LoadU(s, a + k)), s, out + k); });
}

template <class Operation>
HWY_INLINE void map(const float* a, const float* b, float* out, std::size_t count,
                    Operation operation) {
    const S s;
    forEach(count, [=](std::size_t k) HWY_ATTR {
        hn::StoreU(operation(hn::LoadU(s, a + k), hn::LoadU(s, b + k)), s, out + k);
    });
}

template <class Mask>
HWY_INLINE void mark(std::uint32_t* faults, std::size_t k, Mask isFault) {
    const B b;
    const auto bits = hn::BitCast(b, hn::VecFromMask(S(), isFault));
    hn::StoreU(hn::Or(hn::LoadU(b, faults + k), bits), b, faults + k);
}

void add(const float* a, const float* b, float* out, std::size_t count) {
    map(a, b, out, count, [](VS left, VS right) HWY_ATTR { return hn::Add(left, right); });
}

void subtract(const float* a, const float* b, float* out, std::size_t count) {
    map(a, b, out, count, [](VS left, VS right) HWY_ATTR { return hn::Sub(left, right); });
}

void multiply(const float* a, const float* b, float* out, std::size_t count) {
    map(a, b, out, count, [](VS left, VS right) HWY_ATTR { return hn::Mul(left, right); });
}

void divide(const float* a, const float* b, float* out, std::uint32_t* faults, std::size_t count) {
    const S s;
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS divisor = hn::LoadU(s, b + k);
        mark(faults, k, hn::Eq(divisor, hn::Zero(s)));
        hn::StoreU(hn::Div(hn::LoadU(s, a + k), divisor), s, out + k);
    });
}

void addNumber(const float* a, float number, float* out, std::size_t count) {
    const VS other = hn::Set(S(), number);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Add(x, other); });
}

void multiplyByNumber(const float* a, float number, float* out, std::size_t count) {
    const VS other = hn::Set(S(), number);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Mul(x, other); });
}

void divideByNumber(const float* a, float number, float* out, std::size_t count) {
    const VS other = hn::Set(S(), number);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Div(x, other); });
}

void subtractFromNumber(const float* a, float number, float* out, std::size_t count) {
    const VS other = hn::Set(S(), number);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Sub(other, x); });
}

void divideNumberBy(const float* a, float number, float* out, std::uint32_t* faults,
                    std::size_t count) {
    const S s;
    const VS other = hn::Set(s, number);
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS divisor = hn::LoadU(s, a + k);
        mark(faults, k, hn::Eq(divisor, hn::Zero(s)));
        hn::StoreU(hn::Div(other, divisor), s, out + k);
    });
}

void multiplyAndAddNumbers(const float* a, float number, float addend, float* out,
                           std::size_t count) {
    const VS factor = hn::Set(S(), number);
    const VS other = hn::Set(S(), addend);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Add(hn::Mul(x, factor), other); });
}

HWY_INLINE VF rounded(VD value) {
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    // Their DemoteTo answers the largest float in place of infinity.
    double doubles[hn::MaxLanes(D())];
    float floats[hn::MaxLanes(D())];
    hn::StoreU(value, D(), doubles);
    for (std::size_t k = 0; k < hn::MaxLanes(D()); ++k)
        floats[k] = static_cast<float>(doubles[k]);
    return hn::LoadU(F(), floats);
#else
    return hn::DemoteTo(F(), value);
#endif
}

/// Computes in double, and rounds once.
template <class Operation>
HWY_INLINE void mapInDouble(const float* a, float* out, std::size_t count, Operation operation) {
    const F f;
    const D d;
    for (std::size_t k = 0; k < count; k += hn::Lanes(f))
        hn::StoreU(rounded(operation(hn::PromoteTo(d, hn::LoadU(f, a + k)))), f, out + k);
}

void cube(const float* a, float* out, std::size_t count) {
    mapInDouble(a, out, count, [](VD x) HWY_ATTR { return hn::Mul(hn::Mul(x, x), x); });
}

void fourthPower(const float* a, float* out, std::size_t count) {
    mapInDouble(a, out, count, [](VD x) HWY_ATTR {
        const VD square = hn::Mul(x, x);
        return hn::Mul(square, square);
    });
}

void reciprocal(const float* a, float* out, std::size_t count) {
    const VS one = hn::Set(S(), 1.0f);
    map(a, out, count, [=](VS x) HWY_ATTR { return hn::Div(one, x); });
}

void reciprocalSquare(const float* a, float* out, std::size_t count) {
    const VD one = hn::Set(D(), 1.0);
    mapInDouble(a, out, count, [=](VD x) HWY_ATTR { return hn::Div(one, hn::Mul(x, x)); });
}

void squareRoot(const float* a, float* out, std::uint32_t* faults, std::size_t count) {
    const S s;
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS x = hn::LoadU(s, a + k);
        mark(faults, k, hn::Lt(x, hn::Zero(s)));
        hn::StoreU(hn::Sqrt(x), s, out + k);
    });
}

void halfPower(const float* a, float* out, std::uint32_t* faults, std::size_t count) {
    const S s;
    const VS zero = hn::Zero(s);
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS x = hn::LoadU(s, a + k);
        mark(faults, k, hn::Lt(x, zero));
        hn::StoreU(hn::Add(hn::Sqrt(x), zero), s, out + k); // 0 for -0
    });
}

void absolute(const float* a, float* out, std::size_t count) {
    map(a, out, count, [](VS x) HWY_ATTR { return hn::Abs(x); });
}

void checkLogarithm(const float* a, float* out, std::uint32_t* faults, std::size_t count) {
    const S s;
    const VS one = hn::Set(s, 1.0f);
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS x = hn::LoadU(s, a + k);
        const auto isFault = hn::Le(x, hn::Zero(s));
        mark(faults, k, isFault);
        hn::StoreU(hn::IfThenElse(isFault, one, x), s, out + k);
    });
}

void finish(const float* a, const std::uint32_t* faults, float* out, std::size_t count) {
    const S s;
    const B b;
    const VS nan = hn::Set(s, std::numeric_limits<float>::quiet_NaN());
    forEach(count, [=](std::size_t k) HWY_ATTR {
        const VS value = hn::LoadU(s, a + k);
        const auto x = hn::BitCast(b, hn::IfThenElse(hn::IsNaN(value), nan, value));
        hn::StoreU(hn::BitCast(s, hn::AndNot(hn::LoadU(b, faults + k), x)), s, out + k);
    });
}

void finishWithoutFaults(const float* a, float* out, std::size_t count) {
    const VS nan = hn::Set(S(), std::numeric_limits<float>::quiet_NaN());
    map(a, out, count,
        [=](VS value) HWY_ATTR { return hn::IfThenElse(hn::IsNaN(value), nan, value); });
}

} // namespace

/// The kernels for one target.
const KWExpressionKernels* table() {
    static constexpr KWExpressionKernels kernels = {
        .add = add,
        .subtract = subtract,
        .multiply = multiply,
        .divide = divide,
        .addNumber = addNumber,
        .multiplyByNumber = multiplyByNumber,
        .divideByNumber = divideByNumber,
        .subtractFromNumber = subtractFromNumber,
        .divideNumberBy = divideNumberBy,
        .multiplyAndAddNumbers = multiplyAndAddNumbers,
        .cube = cube,
        .fourthPower = fourthPower,
        .reciprocal = reciprocal,
        .reciprocalSquare = reciprocalSquare,
        .halfPower = halfPower,
        .squareRoot = squareRoot,
        .absolute = absolute,
        .checkLogarithm = checkLogarithm,
        .finish = finish,
        .finishWithoutFaults = finishWithoutFaults,
        .sin = byFunction<Sine<0>>,
        .cos = byFunction<Sine<1>>,
        .exp = byFunction<Exp>,
        .ln = byFunction<Ln>,
    };
    return &kernels;
}

} // namespace HWY_NAMESPACE
} // namespace KWExpressionTargets
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <KWBase/KWVectorDispatch.h>

namespace KWExpressionTargets {
static const KWExpressionKernels* best() {
    KW_RETURN_FOR_VECTOR_TARGET(table())
}
} // namespace KWExpressionTargets

const KWExpressionKernels& KWExpressionKernels::best() {
    return *KWExpressionTargets::best();
}

#endif
