// Each face is looked at in a plane of its own, in which its pieces are outlines and the lattice is
// that of the page; places go back to the plane of the piece that they are in.

#include "FacePlaces.h"

#include "HostError.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace Lumivane::Host {
namespace {

using Visibility::Label;
using Visibility::PolygonScene;

constexpr double MostPlaces = 1e7;

double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector scaled(double s, const Vector& v) { return {s * v[0], s * v[1], s * v[2]}; }
Vector sum(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vector difference(const Vector& a, const Vector& b) { return sum(a, scaled(-1.0, b)); }
Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// A flat outline, and the unit normal of the side that is seen.
struct Piece {
  std::vector<Vector> corners;
  Vector normal{};
  double area = 0.0;
  std::string className{};
};

// The side from which the corners run clockwise is seen, so the sum of cross products points away.
std::optional<Piece> pieceOf(const PolygonScene& scene, std::size_t outline) {
  Piece piece;
  for (std::size_t c = scene.offsets[outline]; c < scene.offsets[outline + 1]; ++c)
    piece.corners.push_back(scene.points[static_cast<std::size_t>(scene.corners[c])]);
  if (piece.corners.size() < 3) return std::nullopt;
  Vector twiceArea{};
  for (std::size_t i = 1; i + 1 < piece.corners.size(); ++i)
    twiceArea = sum(twiceArea, cross(difference(piece.corners[i], piece.corners[0]),
                                     difference(piece.corners[i + 1], piece.corners[0])));
  const double length = std::sqrt(dot(twiceArea, twiceArea));
  if (!(length > 0.0)) return std::nullopt;
  piece.normal = scaled(-1.0 / length, twiceArea);
  piece.area = 0.5 * length;
  return piece;
}

// Level, and up the slope; of a level face along x and y.
struct Axes {
  Vector right{};
  Vector up{};

  explicit Axes(const Vector& normal) {
    const double across = std::hypot(normal[0], normal[1]);
    right = across > 1e-9 ? Vector{-normal[1] / across, normal[0] / across, 0.0} : Vector{1, 0, 0};
    up = cross(normal, right);
  }
};

struct Flat {
  double x = 0.0;
  double y = 0.0;
};

// Of an outline in the plane of its face.
struct FlatPiece {
  const Piece* piece = nullptr;
  std::vector<Flat> corners;
};

bool contains(const FlatPiece& piece, const Flat& p) {
  bool inside = false;
  const std::vector<Flat>& corners = piece.corners;
  for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
    const Flat& a = corners[i];
    const Flat& b = corners[j];
    if ((a.y > p.y) == (b.y > p.y)) continue;
    if (p.x < a.x + (p.y - a.y) * (b.x - a.x) / (b.y - a.y)) inside = !inside;
  }
  return inside;
}

// The middle of the longest part of a line across the outline, halfway up.
Flat middleOf(const FlatPiece& piece) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (const Flat& corner : piece.corners) {
    low = std::min(low, corner.y);
    high = std::max(high, corner.y);
  }
  const double y = 0.5 * (low + high);
  std::vector<double> crossings;
  for (std::size_t i = 0, j = piece.corners.size() - 1; i < piece.corners.size(); j = i++) {
    const Flat& a = piece.corners[i];
    const Flat& b = piece.corners[j];
    if ((a.y > y) != (b.y > y)) crossings.push_back(a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y));
  }
  std::sort(crossings.begin(), crossings.end());
  Flat best{piece.corners[0].x, y};
  double longest = -1.0;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
    if (crossings[i + 1] - crossings[i] > longest) {
      longest = crossings[i + 1] - crossings[i];
      best.x = 0.5 * (crossings[i] + crossings[i + 1]);
    }
  return best;
}

class FaceLattice {
 public:
  FaceLattice(const std::vector<Piece>& pieces, double theSpacing, double theClearance)
      : spacing(theSpacing),
        clearance(theClearance),
        largest(largestOf(pieces)),
        axes(largest.normal) {
    for (const Piece& piece : pieces) {
      flat.push_back({&piece, {}});
      for (const Vector& corner : piece.corners) {
        const Vector from = difference(corner, largest.corners[0]);
        flat.back().corners.push_back({dot(from, axes.right), dot(from, axes.up)});
        include(flat.back().corners.back());
      }
    }
  }

  double count() const { return places(lowX, highX) * places(lowY, highY); }

  void addPlaces(const FacePlace& like, std::vector<FacePlace>& result) const {
    const std::size_t before = result.size();
    const double columns = places(lowX, highX);
    const double rows = places(lowY, highY);
    for (double row = 0.0; row < rows; row += 1.0)
      for (double column = 0.0; column < columns; column += 1.0) {
        const Flat p = {0.5 * (lowX + highX) + (column - 0.5 * (columns - 1.0)) * spacing,
                        0.5 * (lowY + highY) + (row - 0.5 * (rows - 1.0)) * spacing};
        const auto found = std::find_if(
            flat.begin(), flat.end(), [&p](const FlatPiece& piece) { return contains(piece, p); });
        if (found != flat.end()) result.push_back(placeAt(p, *found->piece, like));
      }
    if (result.size() > before) return;
    for (const FlatPiece& piece : flat)
      if (piece.piece == &largest) result.push_back(placeAt(middleOf(piece), largest, like));
  }

 private:
  static const Piece& largestOf(const std::vector<Piece>& pieces) {
    return *std::max_element(pieces.begin(), pieces.end(),
                             [](const Piece& a, const Piece& b) { return a.area < b.area; });
  }

  void include(const Flat& p) {
    lowX = std::min(lowX, p.x);
    highX = std::max(highX, p.x);
    lowY = std::min(lowY, p.y);
    highY = std::max(highY, p.y);
  }

  double places(double low, double high) const {
    return std::max(1.0, std::floor((high - low) / spacing));
  }

  // On the piece's own plane, which may bend a little from the face's.
  FacePlace placeAt(const Flat& p, const Piece& piece, const FacePlace& like) const {
    const Vector at = sum(largest.corners[0], sum(scaled(p.x, axes.right), scaled(p.y, axes.up)));
    const double off =
        dot(difference(piece.corners[0], at), piece.normal) / dot(largest.normal, piece.normal);
    FacePlace place = like;
    place.eye = sum(sum(at, scaled(off, largest.normal)), scaled(clearance, piece.normal));
    place.forward = piece.normal;
    place.up = Axes(piece.normal).up;
    place.className = piece.className;
    return place;
  }

  double spacing;
  double clearance;
  const Piece& largest;
  Axes axes;
  std::vector<FlatPiece> flat;
  double lowX = std::numeric_limits<double>::infinity();
  double highX = -std::numeric_limits<double>::infinity();
  double lowY = lowX;
  double highY = highX;
};

class Choice {
 public:
  Choice(const SceneSurfaces& theSurfaces, const std::string& theName)
      : surfaces(theSurfaces), name(theName) {}

  bool takes(const Label& label, const Vector& normal) const {
    if (name == "all") return true;
    if (name != "roofs" && name != "walls") return surfaces.isOf(label, {name});
    const bool isRoof = name == "roofs";
    if (surfaces.isOf(label, {isRoof ? "Roof" : "Wall"})) return true;
    // A model without semantics knows its buildings, but not their roofs.
    if (surfaces.hasClasses() && !surfaces.isOf(label, {"Building", "OtherConstruction"}))
      return false;
    return isRoof ? normal[2] > WallSine : std::abs(normal[2]) <= WallSine;
  }

 private:
  const SceneSurfaces& surfaces;
  const std::string& name;
};

using FaceKey = std::pair<int, std::pair<int, int>>;  // object, face, and region where it has none

std::map<FaceKey, std::vector<Piece>> piecesByFace(const SceneSurfaces& surfaces,
                                                   const Choice& choice) {
  std::map<FaceKey, std::vector<Piece>> faces;
  const PolygonScene& scene = surfaces.pieces();
  for (std::size_t i = 0; i < scene.labels.size(); ++i) {
    const Label& label = scene.labels[i];
    std::optional<Piece> piece = pieceOf(scene, i);
    if (!piece || !choice.takes(label, piece->normal)) continue;
    piece->className = surfaces.classOf(label);
    const int region = label.face > 0 ? 0 : label.region;
    faces[{label.object, {label.face, region}}].push_back(std::move(*piece));
  }
  return faces;
}

}  // namespace

std::vector<FacePlace> placesOnFaces(const SceneSurfaces& surfaces, const std::string& on,
                                     double spacing, double clearance, const std::string& scene) {
  const auto faces = piecesByFace(surfaces, Choice(surfaces, on));
  if (faces.empty())
    throw HostError("--on", "no surface of " + scene + " is one of \"" + on +
                                "\": " + surfaces.classList() + "; all takes every surface");
  std::vector<FacePlace> result;
  double most = 0.0;
  for (const auto& [key, pieces] : faces) {
    // Pieces that look different ways, as of a face that is not flat, have lattices of their own.
    std::vector<std::vector<Piece>> groups;
    for (const Piece& piece : pieces) {
      const auto group = std::find_if(groups.begin(), groups.end(), [&piece](const auto& other) {
        return dot(other.front().normal, piece.normal) > 0.5;
      });
      if (group == groups.end())
        groups.push_back({piece});
      else
        group->push_back(piece);
    }
    FacePlace like;
    like.objectNumber = key.first;
    like.object = surfaces.idOf(key.first);
    like.face = key.second.first;
    for (const std::vector<Piece>& group : groups) {
      const FaceLattice lattice(group, spacing, clearance);
      most += lattice.count();
      if (!(most <= MostPlaces))
        throw HostError("--spacing",
                        "makes more than 10 million eyes on the faces: take a greater one");
      lattice.addPlaces(like, result);
    }
  }
  return result;
}

}  // namespace Lumivane::Host
