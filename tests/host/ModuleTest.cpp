// What modules say of themselves through the host.
#include "tests/host/ScriptedModule.h"

namespace vantorel::host {
namespace {

constexpr const char* kKeys = "$$$/KZ/Vantorel/LStr/";

TEST(ModuleTest, TellsAboutTextVersionCapabilitiesAndParameters) {
  const ModuleInfo& info = testing::checkedEffect()->info();
  EXPECT_EQ(0u, info.about.find("Vantorel, v2.0\n\n"));
  EXPECT_EQ("2.0", info.version);
  EXPECT_EQ(0x00100600u, info.version_word);
  EXPECT_TRUE(info.uses_extent_hint && info.sets_output_size && info.renders_16_bit && info.renders_float);
  ASSERT_EQ(4u, info.parameters.size());
  EXPECT_EQ(4, info.parameters[3].index);
  EXPECT_EQ("Lower Right", info.parameters[3].name);
  EXPECT_EQ((Corners{{0, 0}, {640, 0}, {0, 360}, {640, 360}}),
            Instance(testing::checkedEffect()).defaultCorners({640, 360}));

  const auto scripted = testing::loadScripted({.setup = [](const testing::Call& call) {
    call.out->version = (3u << 19) | (4u << 15) | (5u << 11);
    call.out->out_flags2 = OUT_FLAG2_FLOAT_WORLDS;
    return ERR_NONE;
  }});
  ASSERT_TRUE(scripted);
  const ModuleInfo& other = (*scripted)->info();
  EXPECT_EQ("scripted", other.path);
  EXPECT_EQ("3.4.5", other.version);
  EXPECT_TRUE(other.renders_float);
  EXPECT_FALSE(other.uses_extent_hint || other.sets_output_size || other.renders_16_bit);
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
