// The arc tangent of a quotient q from 0 to 1: with c, the multiple of 1/16 that is nearest to q,
// it is atan(c), from a table, and atan((q - c) / (1 + q c)), a series whose first term alone
// counts beyond a double's digits: that term is kept as two doubles. Sine and cosine: multiples of
// a quarter turn, known to 33 + 33 + 53 digits, are taken off, and what is left is below 45
// degrees, where Taylor's series end soon.
#include "kernel/Trigonometry.h"

#include "kernel/TwoDoubles.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Kernel {
namespace {

constexpr int Steps = 16;
// atan(i / 16).
constexpr TwoDoubles ArcTangents[Steps + 1] = {
    {0.0, 0.0},
    {0.06241880999595735, -1.5490756308295046e-18},
    {0.12435499454676144, -3.1253241424539383e-18},
    {0.18534794999569476, 4.180692268843079e-18},
    {0.24497866312686414, 1.0698755618734451e-17},
    {0.3028848683749714, -1.1010827903001369e-17},
    {0.35877067027057225, -2.4623815582638635e-17},
    {0.4124104415973873, -1.587652227770689e-17},
    {0.4636476090008061, 2.2698777452961687e-17},
    {0.5123894603107377, -2.5462781472855804e-17},
    {0.5585993153435624, -5.4556305485916264e-18},
    {0.6022873461349642, 2.950430737228402e-17},
    {0.6435011087932844, 1.5834785051444286e-17},
    {0.6823165548747481, 6.943223671560008e-18},
    {0.7188299996216245, -2.1478388444456983e-17},
    {0.7531512809621944, -2.4256934659182068e-17},
    {0.7853981633974483, 3.061616997868383e-17},
};
constexpr TwoDoubles Nothing = {0.0, 0.0};
constexpr TwoDoubles Half = {3.141592653589793, 1.2246467991473532e-16};     // of a turn
constexpr TwoDoubles Quarter = {1.5707963267948966, 6.123233995736766e-17};  // of a turn

// Between these nothing over- or underflows that counts, and a power of two in both numbers changes
// no digit of the result.
constexpr double LeastPlain = 0x1p-300;
constexpr double MostPlain = 0x1p300;

double seriesOf(double t) {
  const double z = t * t;
  return t * z *
         (-1.0 / 3 +
          z * (1.0 / 5 + z * (-1.0 / 7 + z * (1.0 / 9 + z * (-1.0 / 11 + z * (1.0 / 13))))));
}

// base + sign * (atan of num / den), with num / den below 1 / 32: the same as below, without what
// is zero there.
double smallAngleFrom(TwoDoubles base, double sign, double num, double den, double quotient) {
  const TwoDoubles product = twoProduct(quotient, den);
  const double low = ((num - product.high) - product.low) / den;
  const TwoDoubles two = twoSum(base.high, sign * quotient);
  return two.high + (two.low + base.low + sign * (low + seriesOf(quotient)));
}

// base + sign * (atan of least / most), with 0 <= least <= most, both finite, and most above 0.
double angleFrom(TwoDoubles base, double sign, double least, double most) {
  const double quotient = least / most;
  // The next term of the series is a third of the cube.
  if (quotient < 0x1p-40) return base.high + (sign * quotient + base.low);
  double num = least;
  double den = most;
  if (!(most >= LeastPlain && most <= MostPlain)) {
    const int scale = -std::ilogb(most);
    num = std::scalbn(least, scale);
    den = std::scalbn(most, scale);
  }
  const int step = static_cast<int>(quotient * Steps + 0.5);
  if (step == 0) return smallAngleFrom(base, sign, num, den, num / den);
  const double c = static_cast<double>(step) / Steps;
  const TwoDoubles cd = twoProduct(c, den);
  const TwoDoubles cn = twoProduct(c, num);
  TwoDoubles a = twoDifference(num, cd.high);
  a.low -= cd.low;
  TwoDoubles b = twoSum(den, cn.high);
  b.low += cn.low;
  const double t = a.high / b.high;
  const TwoDoubles tb = twoProduct(t, b.high);
  const double low = (((a.high - tb.high) - tb.low) + a.low - t * b.low) / b.high;
  const TwoDoubles known = ArcTangents[step];
  const TwoDoubles one = twoSum(base.high, sign * known.high);
  const TwoDoubles two = twoSum(one.high, sign * t);
  return two.high + (one.low + two.low + base.low + sign * (known.low + low + seriesOf(t)));
}

struct Reduced {
  double high;
  double low;
  int quarters;  // modulo 4
};

Reduced reduced(double x) {
  constexpr double TwoByPi = 0.6366197723675814;
  constexpr double First = 0x1.921fb54400000p+0;  // 33 digits
  constexpr double Second = 0x1.0b4611a600000p-34;
  constexpr double Third = 2.0222662487959506e-21;
  const double count = std::floor(x * TwoByPi + 0.5);
  const TwoDoubles one = twoDifference(x - count * First, count * Second);  // both exact
  const TwoDoubles two = twoDifference(one.high, count * Third);
  const int quarters = static_cast<int>(count) & 3;
  return {two.high, one.low + two.low, quarters};
}

double sineOf(const Reduced& r) {
  const double z = r.high * r.high;
  const double series =
      -1.0 / 6 +
      z * (1.0 / 120 + z * (-1.0 / 5040 +
                            z * (1.0 / 362880 + z * (-1.0 / 39916800 +
                                                     z * (1.0 / 6227020800.0 +
                                                          z * (-1.0 / 1307674368000.0 +
                                                               z * (1.0 / 355687428096000.0)))))));
  return r.high + (r.high * z * series + r.low * (1.0 - 0.5 * z));
}

double cosineOf(const Reduced& r) {
  const double z = r.high * r.high;
  const double series =
      1.0 / 24 +
      z * (-1.0 / 720 +
           z * (1.0 / 40320 + z * (-1.0 / 3628800 +
                                   z * (1.0 / 479001600.0 + z * (-1.0 / 87178291200.0 +
                                                                 z * (1.0 / 20922789888000.0))))));
  const TwoDoubles square = twoProduct(r.high, r.high);
  const TwoDoubles first = twoDifference(1.0, 0.5 * square.high);
  return first.high + (first.low + (z * z * series - 0.5 * square.low - r.high * r.low));
}

double of(const Reduced& r, int quarters) {
  switch (quarters & 3) {
    case 0:
      return sineOf(r);
    case 1:
      return cosineOf(r);
    case 2:
      return -sineOf(r);
    default:
      return -cosineOf(r);
  }
}

}  // namespace

double arcTangent(double y, double x) {
  if (std::isnan(x) || std::isnan(y)) return x + y;
  if (std::isinf(x) || std::isinf(y)) {
    const auto side = [](double value) {
      return std::copysign(std::isinf(value) ? 1.0 : 0.0, value);
    };
    return arcTangent(side(y), side(x));
  }
  const double ax = std::abs(x);
  const double ay = std::abs(y);
  if (ay == 0.0) return std::copysign(std::signbit(x) ? Half.high : 0.0, y);
  const bool isBehind = std::signbit(x);
  double angle = 0.0;
  if (ay <= ax)
    angle = isBehind ? angleFrom(Half, -1.0, ay, ax) : angleFrom(Nothing, 1.0, ay, ax);
  else
    angle = angleFrom(Quarter, isBehind ? 1.0 : -1.0, ax, ay);
  return std::copysign(angle, y);
}

double sine(double x) {
  if (x == 0.0) return x;
  const Reduced r = reduced(x);
  return of(r, r.quarters);
}

double cosine(double x) {
  const Reduced r = reduced(x);
  return of(r, r.quarters + 1);
}

double tangent(double x) {
  if (x == 0.0) return x;
  const Reduced r = reduced(x);
  return of(r, r.quarters) / of(r, r.quarters + 1);
}

}  // namespace Lumivane::Kernel
