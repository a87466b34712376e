// SPDX-License-Identifier: GPL-3.0-or-later
// A 2-D affine map of picture coordinates (x, y) to (a·x + c·y + tx, b·x + d·y + ty), the form a
// track matrix and a composition layer use. A plain value: any thread.
#pragma once

namespace Platform {

struct AffineTransform
{
    double a = 1.0;
    double b = 0.0;
    double c = 0.0;
    double d = 1.0;
    double tx = 0.0;
    double ty = 0.0;

    static constexpr AffineTransform identity() { return {}; }
    static constexpr AffineTransform makeScale(double sx, double sy)
    {
        return {sx, 0.0, 0.0, sy, 0.0, 0.0};
    }
    static constexpr AffineTransform makeTranslation(double x, double y)
    {
        return {1.0, 0.0, 0.0, 1.0, x, y};
    }

    // `first` applied, then `second`.
    static constexpr AffineTransform concat(const AffineTransform& first,
                                            const AffineTransform& second)
    {
        return {first.a * second.a + first.b * second.c,
                first.a * second.b + first.b * second.d,
                first.c * second.a + first.d * second.c,
                first.c * second.b + first.d * second.d,
                first.tx * second.a + first.ty * second.c + second.tx,
                first.tx * second.b + first.ty * second.d + second.ty};
    }

    constexpr double mapX(double x, double y) const { return a * x + c * y + tx; }
    constexpr double mapY(double x, double y) const { return b * x + d * y + ty; }
    constexpr bool isIdentity() const { return *this == identity(); }

    friend constexpr bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

} // namespace Platform
