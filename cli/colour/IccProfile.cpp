#include "cli/colour/IccProfile.h"

#include <fmt/format.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/Hash64.h"

namespace vantorel::cli {

namespace {

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using ProfileHandle = std::unique_ptr<void, CloseProfile>;

ProfileHandle openProfile(std::span<const std::byte> bytes) {
  return ProfileHandle(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

class CurveHandle {
 public:
  explicit CurveHandle(cmsToneCurve* curve) : curve_(curve) {}
  ~CurveHandle() { cmsFreeToneCurve(curve_); }
  CurveHandle(const CurveHandle&) = delete;
  CurveHandle& operator=(const CurveHandle&) = delete;
  cmsToneCurve* get() const { return curve_; }

 private:
  cmsToneCurve* curve_;
};

CurveHandle curveOf(const Transfer& transfer) {
  const auto parametric = [](std::array<double, 5> parameters) {
    return CurveHandle(cmsBuildParametricToneCurve(nullptr, 4, parameters.data()));
  };
  switch (transfer.kind) {
    case TransferKind::Srgb:
      return parametric({2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045});
    case TransferKind::Rec709:
      return parametric({1.0 / 0.45, 1.0 / 1.0993, 0.0993 / 1.0993, 1.0 / 4.5, 0.08124});
    case TransferKind::ProPhoto:
      return parametric({1.8, 1.0, 0.0, 1.0 / 16.0, 0.03125});
    default:
      return CurveHandle(cmsBuildGamma(nullptr, transfer.gamma));
  }
}

bool canBeProfile(const Transfer& transfer) {
  return transfer.kind != TransferKind::AcesCct && transfer.kind != TransferKind::Cineon;
}

// An RGB profile with the model's primaries and curve.
ProfileHandle buildProfile(const RgbModel& model) {
  const auto xyy = [](const Chromaticity& c) { return cmsCIExyY{c.x, c.y, 1.0}; };
  const cmsCIExyY white = xyy(model.primaries.white);
  const cmsCIExyYTRIPLE primaries{xyy(model.primaries.red), xyy(model.primaries.green), xyy(model.primaries.blue)};
  const CurveHandle curve = curveOf(model.transfer);
  cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
  return ProfileHandle(cmsCreateRGBProfile(&white, &primaries, curves));
}

class IccConversion : public RowConversion {
 public:
  IccConversion(cmsHPROFILE from, cmsHPROFILE to)
      : transform_(cmsCreateTransform(from, TYPE_RGBA_FLT, to, TYPE_RGBA_FLT, INTENT_RELATIVE_COLORIMETRIC,
                                      cmsFLAGS_NOCACHE | cmsFLAGS_COPY_ALPHA)) {}
  ~IccConversion() override {
    if (transform_ != nullptr) {
      cmsDeleteTransform(transform_);
    }
  }
  IccConversion(const IccConversion&) = delete;
  IccConversion& operator=(const IccConversion&) = delete;

  bool isValid() const { return transform_ != nullptr; }
  void apply(float* row, int width) const override {
    cmsDoTransform(transform_, row, row, static_cast<cmsUInt32Number>(width));
  }

 private:
  cmsHTRANSFORM transform_;
};

std::unique_ptr<const RowConversion> validOrThrow(std::unique_ptr<IccConversion> conversion, const std::string& name,
                                                  const std::string& input) {
  if (!conversion->isValid()) {
    throw fileFailure(input, fmt::format("its ICC profile '{}' does not say how to convert; say what the colours are "
                                         "with --colorspace-layer or --colorspace-over, or give --raw",
                                         name));
  }
  return conversion;
}

std::string description(cmsHPROFILE profile) {
  std::array<char, 256> text{};
  cmsGetProfileInfoASCII(profile, cmsInfoDescription, cmsNoLanguage, cmsNoCountry, text.data(), text.size());
  return text[0] == '\0' ? "unnamed" : text.data();
}

// The known curve that is close to this one; empty if there is none.
std::optional<Transfer> transferOf(const cmsToneCurve* curve) {
  const auto light = [&](double code) { return double{cmsEvalToneCurveFloat(curve, static_cast<float>(code))}; };
  const double middle = light(0.5);
  std::vector<Transfer> candidates{{TransferKind::Linear, 1.0},
                                   {TransferKind::Srgb, 1.0},
                                   {TransferKind::Rec709, 1.0},
                                   {TransferKind::ProPhoto, 1.0}};
  if (middle > 0.0 && middle < 1.0) {
    candidates.push_back({TransferKind::Gamma, std::log(middle) / std::log(0.5)});
  }
  for (const Transfer& candidate : candidates) {
    bool is_close = true;
    for (int code = 1; code <= 255 && is_close; ++code) {
      // A tenth of an 8-bit step; more near black, where tables are coarse.
      is_close = std::abs(candidate.encode(light(code / 255.0)) - code / 255.0) < (code < 16 ? 0.3 : 0.1) / 255.0;
    }
    if (is_close) {
      return candidate;
    }
  }
  return std::nullopt;
}

// The primaries, for a D65 white, from colorants that are relative to the connection space's D50.
std::optional<Primaries> primariesOf(cmsHPROFILE profile) {
  const cmsTagSignature tags[] = {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
  const Matrix3 adapt = adaptation(kD50Xyz, xyzOf(kD65));
  std::array<Chromaticity, 3> found;
  Triple sum{};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto* const xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tags[i]));
    if (xyz == nullptr) {
      return std::nullopt;
    }
    const Triple colorant{xyz->X, xyz->Y, xyz->Z};
    const Triple at = adapt * colorant;
    const double all = at[0] + at[1] + at[2];
    found[i] = {at[0] / all, at[1] / all};
    for (std::size_t c = 0; c < 3; ++c) {
      sum[c] += colorant[c];
    }
  }
  constexpr double kRounding = 2e-3;
  for (std::size_t c = 0; c < 3; ++c) {
    if (!(std::abs(sum[c] - kD50Xyz[c]) < kRounding)) {
      return std::nullopt;
    }
  }
  const Primaries primaries{found[0], found[1], found[2], kD65};
  return isUsable(primaries) ? std::optional(primaries) : std::nullopt;
}

std::optional<RgbModel> modelOf(cmsHPROFILE profile) {
  if (cmsIsTag(profile, cmsSigAToB0Tag) != 0 || cmsIsTag(profile, cmsSigDToB0Tag) != 0) {
    return std::nullopt;
  }
  const auto primaries = primariesOf(profile);
  if (!primaries) {
    return std::nullopt;
  }
  std::optional<Transfer> common;
  for (const cmsTagSignature tag : {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag}) {
    const auto* const curve = static_cast<const cmsToneCurve*>(cmsReadTag(profile, tag));
    const auto transfer = curve != nullptr ? transferOf(curve) : std::nullopt;
    if (!transfer || (common && *common != *transfer)) {
      return std::nullopt;
    }
    common = transfer;
  }
  return RgbModel{*primaries, *common};
}

std::optional<ColourSpace> greySpace(cmsHPROFILE profile, const std::string& name) {
  const auto* const curve = static_cast<const cmsToneCurve*>(cmsReadTag(profile, cmsSigGrayTRCTag));
  if (curve == nullptr) {
    return std::nullopt;
  }
  const auto exact = transferOf(curve);
  const double estimate = cmsEstimateGamma(curve, 0.1);
  if (!exact && !(estimate > 0.1 && estimate < 10.0)) {
    return std::nullopt;
  }
  return spaceOf({linearRec709().rgb->primaries, exact.value_or(Transfer{TransferKind::Gamma, estimate})}, name);
}

}  // namespace

IccProfile::IccProfile(std::span<const std::byte> bytes, std::string name)
    : bytes_(bytes.begin(), bytes.end()), name_(std::move(name)) {}

std::uint64_t IccProfile::hash() const {
  Hash64 hash;
  hash.add(bytes_);
  return hash.value();
}

std::unique_ptr<const RowConversion> IccProfile::toLinear(const std::string& input) const {
  const ProfileHandle profile = openProfile(bytes_);
  const ProfileHandle linear = buildProfile(*linearRec709().rgb);
  return validOrThrow(std::make_unique<IccConversion>(profile.get(), linear.get()), name_, input);
}

std::unique_ptr<const RowConversion> IccProfile::fromLinear(const std::string& input) const {
  const ProfileHandle profile = openProfile(bytes_);
  const ProfileHandle linear = buildProfile(*linearRec709().rgb);
  return validOrThrow(std::make_unique<IccConversion>(linear.get(), profile.get()), name_, input);
}

std::optional<ColourSpace> spaceOfIccProfile(std::span<const std::byte> bytes, const std::string& path) {
  const ProfileHandle profile = openProfile(bytes);
  if (!profile) {
    throw fileFailure(path,
                      "its ICC profile is broken; say what the colours are with --colorspace-layer or "
                      "--colorspace-over, or give --raw");
  }
  const std::string name = description(profile.get());
  switch (cmsGetColorSpace(profile.get())) {
    case cmsSigGrayData:
      return greySpace(profile.get(), name);
    case cmsSigRgbData:
      break;
    default:
      return std::nullopt;
  }
  if (const auto model = modelOf(profile.get())) {
    return spaceOf(*model, name);
  }
  ColourSpace space{name, std::nullopt, std::make_shared<const IccProfile>(bytes, name), nullptr};
  space.icc->toLinear(path);
  return space;
}

std::vector<std::byte> iccProfileOf(const ColourSpace& space) {
  if (space.icc) {
    return space.icc->bytes();
  }
  if (!space.rgb || !canBeProfile(space.rgb->transfer)) {
    return {};
  }
  const ProfileHandle profile = buildProfile(*space.rgb);
  cmsMLU* const name = cmsMLUalloc(nullptr, 1);
  cmsMLUsetASCII(name, "en", "US", space.name.c_str());
  cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, name);
  cmsMLUfree(name);
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile.get(), nullptr, &size);
  std::vector<std::byte> bytes(size);
  cmsSaveProfileToMem(profile.get(), bytes.data(), &size);
  // Replaces the profile's creation date by 1 January 2000, so that the bytes are always the same.
  constexpr std::array<unsigned char, 12> kDate{0x07, 0xD0, 0, 1, 0, 1};
  constexpr std::size_t kDateOffset = 24;
  if (bytes.size() >= kDateOffset + kDate.size()) {
    std::memcpy(bytes.data() + kDateOffset, kDate.data(), kDate.size());
  }
  return bytes;
}

}  // namespace vantorel::cli
