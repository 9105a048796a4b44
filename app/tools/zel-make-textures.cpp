// Writes the editor's two background textures into a folder (the bundle's
// resources by default):
//
//   noised-ottoman.jpg  light: warm off-white ottoman fabric, pronounced
//                       horizontal ribs crossed by fine warp threads, with
//                       a little grain and mottling.
//   noise_dark.png      dark: fine, subtle dark grey noise.
//
// Both are 256 × 256 pixels (128 points at double resolution) and tile
// seamlessly: every term is periodic over the tile (noise lattices wrap,
// stripes have periods dividing 256). The output is deterministic.
//
//   zel-make-textures [OUTDIR]
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "toolkit/core/ZelImage.h"
#include "toolkit/core/ZelImageEncoding.h"

using zel::ZelImage;

namespace {

constexpr int kSize = 256;
constexpr double kPi = 3.14159265358979323846;

// A well-mixed 32-bit hash of a lattice point and a seed.
std::uint32_t hash(int x, int y, std::uint32_t seed) {
  std::uint32_t h = seed * 0x9E3779B9u ^ static_cast<std::uint32_t>(x) * 0x85EBCA6Bu ^
                    static_cast<std::uint32_t>(y) * 0xC2B2AE35u;
  h ^= h >> 16;
  h *= 0x7FEB352Du;
  h ^= h >> 15;
  h *= 0x846CA68Bu;
  h ^= h >> 16;
  return h;
}

// Uniform in [-1, 1].
double signedUnit(std::uint32_t h) { return static_cast<double>(h) / 2147483647.5 - 1.0; }

// Per-pixel grain: one independent value per pixel of the tile.
double grain(int x, int y, std::uint32_t seed) { return signedUnit(hash(x, y, seed)); }

double smooth(double t) { return t * t * (3 - 2 * t); }

// Value noise on a lattice of `cellsX` × `cellsY` cells across the tile,
// wrapped so the tile's edges meet. Result in [-1, 1].
double wrappedNoise(double x, double y, int cellsX, int cellsY, std::uint32_t seed) {
  const double u = x * cellsX / kSize, v = y * cellsY / kSize;
  const int i = static_cast<int>(std::floor(u)), j = static_cast<int>(std::floor(v));
  const double fu = smooth(u - i), fv = smooth(v - j);
  auto at = [&](int a, int b) { return signedUnit(hash((a % cellsX + cellsX) % cellsX, (b % cellsY + cellsY) % cellsY, seed)); };
  const double top = at(i, j) + (at(i + 1, j) - at(i, j)) * fu;
  const double bottom = at(i, j + 1) + (at(i + 1, j + 1) - at(i, j + 1)) * fu;
  return top + (bottom - top) * fv;
}

std::uint8_t toByte(double v) { return static_cast<std::uint8_t>(std::lround(std::fmin(255.0, std::fmax(0.0, v)))); }

std::uint32_t opaque(double r, double g, double b) {
  return 0xFF000000u | (std::uint32_t{toByte(r)} << 16) | (std::uint32_t{toByte(g)} << 8) | toByte(b);
}

// ---- Light: ottoman.

constexpr int kRibPeriod = 8;   // pixels per horizontal rib (4 points)
constexpr int kWarpPeriod = 2;  // pixels per warp thread

// The shading across one rib: lit on its rounded crown, dark in the groove.
double ribShade(int y) {
  const double phase = 2 * kPi * (y % kRibPeriod + 0.5) / kRibPeriod;
  return 0.5 - 0.5 * std::cos(phase);  // 0 in the groove, 1 on the crown
}

// The warp threads show between the ribs' weft, offset on alternate ribs.
double warpShade(int x, int y) {
  const int rib = y / kRibPeriod;
  return ((x / kWarpPeriod + rib) % 2 == 0) ? 1.0 : -1.0;
}

double ottomanLightness(int x, int y) {
  const double rib = ribShade(y);
  const double slub = wrappedNoise(x, y, 32, kSize / kRibPeriod, 11);  // thickness along each rib
  const double mottle = wrappedNoise(x, y, 4, 4, 12) + 0.5 * wrappedNoise(x, y, 8, 8, 13);
  return 12.0 * (rib - 0.5)                 // the ribs
         + 3.0 * warpShade(x, y) * (1 - rib)  // warp threads, in the grooves
         + 4.0 * slub * rib                 // irregular weft
         + 2.0 * mottle                     // large, faint unevenness
         + 4.0 * grain(x, y, 14);           // fibres
}

ZelImage makeOttoman() {
  ZelImage image(kSize, kSize);
  const double base[3] = {241, 236, 226};  // warm off-white
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const double l = ottomanLightness(x, y);
      // Shadows of the weave are a touch warmer than its highlights.
      image.setPixel(x, y, opaque(base[0] + l, base[1] + l * 1.05, base[2] + l * 1.2));
    }
  }
  return image;
}

// ---- Dark: fine grey noise.

ZelImage makeDarkNoise() {
  ZelImage image(kSize, kSize);
  constexpr double kBase = 34;
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      // Two grains summed: a softer, triangular distribution.
      const double g = 2.2 * (grain(x, y, 21) + grain(x, y, 22));
      const double mottle = 1.5 * wrappedNoise(x, y, 8, 8, 23);
      const double v = kBase + g + mottle;
      image.setPixel(x, y, opaque(v, v, v));
    }
  }
  return image;
}

bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  if (bytes.empty()) return false;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ZEL_RESOURCES_DIR;
  const std::string light = dir + "/noised-ottoman.jpg", dark = dir + "/noise_dark.png";
  constexpr int kJPEGQuality = 90;
  if (!writeFile(light, zel::ZelEncodeJPEG(makeOttoman(), kJPEGQuality))) {
    std::fprintf(stderr, "zel-make-textures: cannot write %s\n", light.c_str());
    return 1;
  }
  if (!writeFile(dark, zel::ZelEncodePNG(makeDarkNoise()))) {
    std::fprintf(stderr, "zel-make-textures: cannot write %s\n", dark.c_str());
    return 1;
  }
  std::printf("%s\n%s\n", light.c_str(), dark.c_str());
  return 0;
}
