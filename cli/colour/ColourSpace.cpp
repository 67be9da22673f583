#include "cli/colour/ColourSpace.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

#include "cli/colour/IccProfile.h"
#include "cli/colour/OcioConfig.h"

namespace vantorel::cli {

namespace {

constexpr Primaries kRec709{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, kD65};
constexpr Primaries kP3{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kD65};
constexpr Primaries kRec2020{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, kD65};
constexpr Primaries kAdobe{{0.64, 0.33}, {0.21, 0.71}, {0.15, 0.06}, kD65};
constexpr Primaries kProPhotoRgb{{0.7347, 0.2653}, {0.1596, 0.8404}, {0.0366, 0.0001}, {0.3457, 0.3585}};
constexpr Chromaticity kAcesWhite{0.32168, 0.33767};
constexpr Primaries kAp0{{0.73470, 0.26530}, {0.0, 1.0}, {0.00010, -0.07700}, kAcesWhite};
constexpr Primaries kAp1{{0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}, kAcesWhite};

constexpr Transfer kLinearLight{TransferKind::Linear, 1.0};
constexpr Transfer gamma(double exponent) {
  return {TransferKind::Gamma, exponent};
}
constexpr Transfer curve(TransferKind kind) {
  return {kind, 1.0};
}

struct NamedSpace {
  const char* name;
  const char* aliases;  // in lower case without punctuation, each between blanks
  RgbModel model;
};

// The spaces known by name; add new ones here. If two are the same to within rounding, the first one's name is used.
const NamedSpace kNamed[]{
    {"sRGB", " srgb srgbtexture srgbtx srgbdisplay ", {kRec709, curve(TransferKind::Srgb)}},
    {"linear",
     " linear linrec709 linearrec709 linrec709srgb linearrec709srgb linsrgb linearsrgb scenelinear lnf ",
     {kRec709, kLinearLight}},
    {"Display P3", " displayp3 p3d65 srgbp3d65 ", {kP3, curve(TransferKind::Srgb)}},
    {"linear P3", " linearp3 linp3d65 linearp3d65 lindisplayp3 ", {kP3, kLinearLight}},
    {"Adobe RGB", " adobergb adobergb1998 ", {kAdobe, gamma(563.0 / 256.0)}},
    {"linear Adobe RGB", " linearadobergb linadobergb ", {kAdobe, kLinearLight}},
    {"ACEScg", " acescg linap1 linearap1 ", {kAp1, kLinearLight}},
    {"ACES2065-1", " aces20651 aces linap0 linearap0 ", {kAp0, kLinearLight}},
    {"ACEScct", " acescct ", {kAp1, curve(TransferKind::AcesCct)}},
    {"Rec.709", " rec709 bt709 itu709 ", {kRec709, curve(TransferKind::Rec709)}},
    {"Rec.2020", " rec2020 bt2020 ", {kRec2020, curve(TransferKind::Rec709)}},
    {"linear Rec.2020", " linearrec2020 linrec2020 ", {kRec2020, kLinearLight}},
    {"gamma 1.8", " gamma18 g18rec709 ", {kRec709, gamma(1.8)}},
    {"gamma 2.2", " gamma22 g22rec709 ", {kRec709, gamma(2.2)}},
    {"gamma 2.4", " gamma24 g24rec709 ", {kRec709, gamma(2.4)}},
    {"ProPhoto RGB", " prophotorgb prophoto romm ", {kProPhotoRgb, curve(TransferKind::ProPhoto)}},
    {"Cineon", " cineon kodaklog ", {kRec709, curve(TransferKind::Cineon)}},
};

// Whether the curves agree to within a tenth of an 8-bit step.
bool areClose(const Transfer& a, const Transfer& b) {
  if (a == b) {
    return true;
  }
  for (int i = 1; i <= 64; ++i) {
    const double code = i / 64.0;
    if (!(std::abs(b.encode(a.decode(code)) - code) < 0.1 / 255.0)) {
      return false;
    }
  }
  return true;
}

bool areClose(const RgbModel& a, const RgbModel& b) {
  return areClose(a.primaries, b.primaries) && areClose(a.transfer, b.transfer);
}

std::string plain(const std::string& name) {
  std::string letters;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      letters += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  return letters;
}

ColourSpace fromTable(const NamedSpace& named) {
  return {named.name, named.model, nullptr, nullptr};
}

}  // namespace

bool isSame(const ColourSpace& a, const ColourSpace& b) {
  if (a.rgb && b.rgb) {
    return areClose(*a.rgb, *b.rgb);
  }
  if (a.icc && b.icc) {
    return a.icc->bytes() == b.icc->bytes();
  }
  return a.config && a.config == b.config && a.name == b.name;
}

bool isLinear(const ColourSpace& space) {
  return space.config ? space.config->isLinear(space.name) : space.rgb && space.rgb->transfer.isLinear();
}

ColourSpace linearOf(const ColourSpace& space) {
  if (isLinear(space)) {
    return space;
  }
  if (space.config) {
    return space.config->sceneLinear(space.config).value_or(linearRec709());
  }
  return space.rgb ? spaceOf({space.rgb->primaries, kLinearLight}, "linear, primaries of " + space.name)
                   : linearRec709();
}

std::string definition(const ColourSpace& space) {
  if (space.config) {
    return fmt::format("{} of {}", space.name, space.config->identity());
  }
  if (space.icc) {
    return fmt::format("profile {:x}", space.icc->hash());
  }
  const Primaries& p = space.rgb->primaries;
  const Transfer& t = space.rgb->transfer;
  return fmt::format("{} {} {} {} {} {} {} {} curve {} {}", p.red.x, p.red.y, p.green.x, p.green.y, p.blue.x, p.blue.y,
                     p.white.x, p.white.y, static_cast<int>(t.kind), t.gamma);
}

std::optional<ColourSpace> namedSpace(const std::string& name) {
  const std::string word = ' ' + plain(name) + ' ';
  const auto found = std::ranges::find_if(
      kNamed, [&](const NamedSpace& named) { return std::string_view(named.aliases).find(word) != std::string::npos; });
  return found == std::end(kNamed) ? std::nullopt : std::optional(fromTable(*found));
}

std::string namedSpaces() {
  std::string names;
  for (const NamedSpace& named : kNamed) {
    names += (names.empty() ? "" : ", ") + std::string(named.name);
  }
  return names;
}

ColourSpace srgb() {
  return fromTable(kNamed[0]);
}

ColourSpace linearRec709() {
  return fromTable(kNamed[1]);
}

ColourSpace aces2065() {
  return {"ACES2065-1", RgbModel{kAp0, kLinearLight}, nullptr, nullptr};
}

ColourSpace spaceOf(const RgbModel& model, const std::string& name) {
  const auto found =
      std::ranges::find_if(kNamed, [&](const NamedSpace& named) { return areClose(model, named.model); });
  return found == std::end(kNamed) ? ColourSpace{name, model, nullptr, nullptr} : fromTable(*found);
}

}  // namespace vantorel::cli
