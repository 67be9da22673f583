// The module as hosts load it: what it exports and needs, and that it answers through its entry.
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tests/effect/ScriptedHost.h"

namespace {

// The names in the module's dynamic section: the libraries that it needs and the functions that it defines.
struct DynamicNames {
  std::set<std::string> needed;
  std::set<std::string> exported;
};

DynamicNames readDynamicNames(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const auto at = [&](std::uint64_t offset) { return bytes.data() + offset; };
  DynamicNames names;
  const auto* header = reinterpret_cast<const Elf64_Ehdr*>(bytes.data());
  const auto* sections = reinterpret_cast<const Elf64_Shdr*>(at(header->e_shoff));
  for (int i = 0; i < header->e_shnum; ++i) {
    const Elf64_Shdr& section = sections[i];
    const char* const strings = at(sections[section.sh_link].sh_offset);
    if (section.sh_type == SHT_DYNAMIC) {
      for (std::uint64_t k = 0; k < section.sh_size / sizeof(Elf64_Dyn); ++k) {
        const auto& entry = reinterpret_cast<const Elf64_Dyn*>(at(section.sh_offset))[k];
        if (entry.d_tag == DT_NEEDED) {
          names.needed.insert(strings + entry.d_un.d_val);
        }
      }
    } else if (section.sh_type == SHT_DYNSYM) {
      for (std::uint64_t k = 0; k < section.sh_size / sizeof(Elf64_Sym); ++k) {
        const auto& symbol = reinterpret_cast<const Elf64_Sym*>(at(section.sh_offset))[k];
        if (symbol.st_shndx != SHN_UNDEF && ELF64_ST_BIND(symbol.st_info) == STB_GLOBAL) {
          names.exported.insert(strings + symbol.st_name);
        }
      }
    }
  }
  return names;
}

}  // namespace

TEST(Module, ExportsItsEntryAndNeedsTheRuntimeAlone) {
  const DynamicNames names = readDynamicNames(VANTOREL_MODULE_PATH);
  EXPECT_EQ(names.exported.count("EffectMainExtra"), 1u);
  EXPECT_EQ(names.exported.count("M_ConcatMatrix"), 1u);
  for (const std::string& name : names.exported) {
    EXPECT_TRUE(name == "EffectMainExtra" || name.rfind("M_", 0) == 0) << name;
  }
  for (const std::string& library : names.needed) {
    const bool isRuntime = library.rfind("libstdc++.so", 0) == 0 || library.rfind("libm.so", 0) == 0 ||
                           library.rfind("libgcc_s.so", 0) == 0 || library.rfind("libc.so", 0) == 0 ||
                           library.rfind("ld-linux", 0) == 0;
    const bool isSanitizer = library.find("san.so") != std::string::npos;
    EXPECT_TRUE(isRuntime || isSanitizer) << library;
  }
}

TEST(Module, DrawsAFrameThroughItsEntry) {
  void* const module = dlopen(VANTOREL_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << dlerror();
  ScriptedHost host(16);
  host.entry = reinterpret_cast<PF_EffectMain>(dlsym(module, PF_EFFECT_ENTRY));
  ASSERT_NE(host.entry, nullptr);
  EXPECT_EQ(host.run(CMD_GLOBAL_SETUP), 0);
  EXPECT_EQ(host.out.out_flags, 0x02000240u);
  for (const std::int32_t command :
       {CMD_ABOUT, CMD_PARAMS_SETUP, CMD_FRAME_SETUP, CMD_RENDER, CMD_PRE_RENDER, CMD_SMART_RENDER}) {
    EXPECT_EQ(host.run(command), 0) << command;
  }
  EXPECT_STREQ(host.out.return_msg, "About 2.0");
  EXPECT_EQ(host.out.width, 8);
  EXPECT_EQ(host.samples.size(), 2u * 48u);
  EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);
  EXPECT_EQ(dlclose(module), 0);
}
