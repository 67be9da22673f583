// What the effect says of itself through the host.
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr const char* kKeys = "$$$/KZ/Vantorel/LStr/";

TEST(ModuleTest, TellsAboutTextVersionCapabilitiesAndParameters) {
  const ModuleInfo& info = testing::checkedEffect()->info();
  EXPECT_EQ(0u, info.about.find("Vantorel, v2.0\n\n"));
  EXPECT_NE(std::string::npos, info.about.find("\n\nDistort an image to a convex quadrilateral."));
  EXPECT_EQ("2.0", info.version);
  EXPECT_TRUE(info.uses_extent_hint && info.sets_output_size && info.renders_16_bit && info.renders_float);
  EXPECT_EQ(0x00100600u, info.version_word);
  EXPECT_EQ(0x02000240u, info.out_flags);
  EXPECT_EQ(0x1000u, info.out_flags2);
  const char* const names[] = {"Upper Left", "Upper Right", "Lower Left", "Lower Right"};
  const Point defaults[] = {{0, 0}, {100, 0}, {0, 100}, {100, 100}};
  ASSERT_EQ(4u, info.parameters.size());
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(i + 1, info.parameters[i].index);
    EXPECT_EQ(names[i], info.parameters[i].name);
    EXPECT_EQ(defaults[i], info.parameters[i].default_percent);
  }
  EXPECT_EQ((Corners{{0, 0}, {640, 0}, {0, 360}, {640, 360}}),
            Instance(testing::checkedEffect()).defaultCorners({640, 360}));
}

TEST(ModuleTest, TranslationsReplaceTextsAndFitTheirRecords) {
  const std::string key = kKeys;
  const auto module =
      testing::loadModule("vantorel", {.translations = {{key + "0000", "Vantorel %ld,%ld#{cr}Verzerrt."},
                                                        {key + "0001", "Oben links, wo das Bild anfängt zu sein"},
                                                        {key + "0005", "Nicht mehr als %d Bildpunkte."}}});
  EXPECT_EQ("Vantorel 2,0\nVerzerrt.", module->info().about);
  EXPECT_EQ("Oben links, wo das Bild anfängt", module->info().parameters[0].name + "t");
  EXPECT_EQ("Upper Right", module->info().parameters[1].name);

  Instance instance = testing::instanceWith(module, {{-20000, 0}, {20000, 0}, {-20000, 10}, {20000, 10}});
  const auto box = instance.boundingBox({100, 100}, {});
  ASSERT_FALSE(box);
  EXPECT_EQ("Nicht mehr als 30000 Bildpunkte.", box.error().message);
}

TEST(ModuleTest, ATranslationThatChangesPlaceholdersIsRefused) {
  const auto refused =
      Module::load(testing::modulePath("vantorel"), {.translations = {{std::string(kKeys) + "0005", "%s"}}});
  ASSERT_FALSE(refused);
  EXPECT_EQ(ErrorKind::InvalidArgument, refused.error().kind);
  EXPECT_NE(std::string::npos, refused.error().input.find("0005"));
}

TEST(ModuleTest, AModuleLivesUntilItsLastOwnerLetsGo) {
  auto module = testing::loadModule("vantorel");
  const std::weak_ptr<const Module> watch = module;
  {
    Instance instance(module);
    module.reset();
    EXPECT_FALSE(watch.expired());
  }
  EXPECT_TRUE(watch.expired());
  EXPECT_TRUE(Module::load(testing::modulePath("vantorel"))) << "and can be loaded again";
}

}  // namespace
}  // namespace vantorel::host
