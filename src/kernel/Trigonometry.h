#pragma once

/// Functions of angles that give the same bits on every machine. Those of the C library do not:
/// glibc takes other code where the processor has fused multiply-adds. Results are within one unit
/// of the last place. Only additions, multiplications and divisions of IEEE doubles are used.
namespace Lumivane::Kernel {

/// The angle of the direction (x, y) from the x axis, from -pi to pi; with the signs of zero, and
/// of infinities, as std::atan2 has them.
double arcTangent(double y, double x);

/// The sine of an angle in radians. \pre |x| <= 1e5
double sine(double x);

/// The cosine of an angle in radians. \pre |x| <= 1e5
double cosine(double x);

/// The tangent of an angle in radians, within two units of the last place. \pre |x| <= 1e5
double tangent(double x);

}  // namespace Lumivane::Kernel
