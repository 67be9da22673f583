// What modules declare to the host, and what the host keeps for them.
#include <cstring>

#include "host/module/HandleStore.h"
#include "tests/host/ScriptedModule.h"

namespace vantorel::host {
namespace {

TEST(ModuleTest, ReportsAboutTextVersionCapabilitiesAndParameters) {
  const ModuleInfo& info = checkedEffect()->info();
  EXPECT_EQ(0u, info.about.find("Vantorel, v2.0\n\n"));
  EXPECT_EQ("2.0", info.version);
  EXPECT_EQ(0x00100600u, info.version_word);
  EXPECT_TRUE(info.uses_extent_hint && info.sets_output_size && info.renders_16_bit && info.renders_float);
  ASSERT_EQ(4u, info.parameters.size());
  EXPECT_EQ(4, info.parameters[3].index);
  EXPECT_EQ("Lower Right", info.parameters[3].name);
  EXPECT_EQ((Corners{{0, 0}, {640, 0}, {0, 360}, {640, 360}}), Instance(checkedEffect()).defaultCorners({640, 360}));

  const auto scripted = loadScripted({.setup = [](const Call& call) {
    call.out->version = (3u << 19) | (4u << 15) | (5u << 11);
    call.out->out_flags2 = OUT_FLAG2_FLOAT_WORLDS;
    return ERR_NONE;
  }});
  const ModuleInfo& other = scripted.value()->info();
  EXPECT_EQ("scripted", other.path);
  EXPECT_EQ("3.4.5", other.version);
  EXPECT_TRUE(other.renders_float);
  EXPECT_FALSE(other.uses_extent_hint || other.sets_output_size || other.renders_16_bit);
}

TEST(ModuleTest, IsToldTheLayersSizeBeforeAFrame) {
  std::vector<Size> told;
  const auto module = loadScripted({.frame_setup = [&](const Call& call) {
    const PF_LayerDef& layer = call.parameters[0]->value.layer_world;
    EXPECT_EQ((Size{layer.width, layer.height}), (Size{call.in->width, call.in->height}));
    told.push_back({layer.width, layer.height});
    return ERR_NONE;
  }});
  Instance instance(module.value());
  for (const Size size : {Size{57, 31}, Size{20, 90}}) {
    ASSERT_TRUE(instance.boundingBox(size, {.protocol = Protocol::Plain}));
    EXPECT_EQ(size, told.back());
  }
}

TEST(ModuleTest, TranslationsReplaceTextsAndFitTheirRecords) {
  const std::string key = "$$$/KZ/Vantorel/LStr/000";
  const auto module =
      Module::load(kEffectPath, {.translations = {{key + '0', "Vantorel %ld,%ld#{cr}Verzerrt."},
                                                  {key + '1', "Oben links, wo das Bild anfängt zu sein"},
                                                  {key + '5', "Nicht mehr als %d Bildpunkte."}}})
          .value();
  EXPECT_EQ("Vantorel 2,0\nVerzerrt.", module->info().about);
  EXPECT_EQ("Oben links, wo das Bild anfängt", module->info().parameters[0].name + "t");
  EXPECT_EQ("Upper Right", module->info().parameters[1].name);

  Instance instance = instanceWith(module, {{-20000, 0}, {20000, 0}, {-20000, 10}, {20000, 10}});
  const auto box = instance.boundingBox({100, 100}, {});
  ASSERT_FALSE(box);
  EXPECT_EQ("Nicht mehr als 30000 Bildpunkte.", box.error().message);

  // Other placeholders would be filled with other arguments.
  EXPECT_TRUE(isError(Module::load(kEffectPath, {.translations = {{key + '5', "%s"}}}), ErrorKind::InvalidArgument,
                      "translation of " + key + '5'));
}

TEST(ModuleTest, AModuleLivesUntilItsLastOwnerLetsGo) {
  auto module = Module::load(kEffectPath).value();
  const std::weak_ptr<const Module> watch = module;
  {
    Instance instance(module);
    module.reset();
    EXPECT_FALSE(watch.expired());
  }
  EXPECT_TRUE(watch.expired());
  EXPECT_TRUE(Module::load(kEffectPath)) << "and can be loaded again";
}

// What a module allocates through the host.
TEST(HandleStoreTest, GivesZeroedBlocksThroughHandlesAndKnowsItsOwn) {
  HandleStore store;
  const PF_Handle handle = store.allocate(8);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(0, std::memcmp(*handle, "\0\0\0\0\0\0\0\0", 8));
  void* stranger = nullptr;
  EXPECT_FALSE(store.release(&stranger));
  EXPECT_EQ(nullptr, store.allocate(~std::uint64_t{0}));
  EXPECT_TRUE(store.release(handle));
  EXPECT_FALSE(store.release(handle));
  EXPECT_TRUE(store.release(nullptr));
  EXPECT_EQ(0u, store.count());
}

}  // namespace
}  // namespace vantorel::host
