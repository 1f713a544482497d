#pragma once

/// A colour in device RGB; each component from 0 to 1.
struct KWColor {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    friend constexpr bool operator==(const KWColor&, const KWColor&) = default;

    static constexpr KWColor blackColor() { return {0, 0, 0, 1}; }
    static constexpr KWColor whiteColor() { return {1, 1, 1, 1}; }
    static constexpr KWColor redColor() { return {1, 0, 0, 1}; }
    static constexpr KWColor greenColor() { return {0, 1, 0, 1}; }
    static constexpr KWColor blueColor() { return {0, 0, 1, 1}; }
    static constexpr KWColor cyanColor() { return {0, 1, 1, 1}; }
    static constexpr KWColor magentaColor() { return {1, 0, 1, 1}; }
    static constexpr KWColor yellowColor() { return {1, 1, 0, 1}; }
};
