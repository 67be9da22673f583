// The module as hosts load it: what it exports and needs, and that it draws through its entry.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "tests/effect/ScriptedHost.h"

namespace {

// The lines that a command prints about the module.
Log linesOf(const std::string& command) {
  FILE* const pipe = popen((command + " " VANTOREL_MODULE_PATH).c_str(), "r");
  Log lines;
  for (char line[4096]; fgets(line, sizeof line, pipe) != nullptr;) {
    lines.push_back(line);
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return lines;
}

}  // namespace

TEST(Module, ExportsItsEntryAndNeedsTheRuntimeAlone) {
  const Log symbols = linesOf("nm -D --defined-only --format=just-symbols");
  EXPECT_EQ(std::count(symbols.begin(), symbols.end(), "EffectMainExtra\n"), 1);
  for (const std::string& name : symbols) {
    EXPECT_TRUE(name == "EffectMainExtra\n" || name.rfind("M_", 0) == 0) << name;
  }
  for (const std::string& line : linesOf("readelf -d")) {
    const std::string library = line.substr(line.find('[') + 1);
    bool allowed = line.find("(NEEDED)") == std::string::npos || library.find("san.so") != std::string::npos;
    for (const char* const runtime : {"libstdc++.so", "libm.so", "libgcc_s.so", "libc.so", "ld-linux"}) {
      allowed = allowed || library.rfind(runtime, 0) == 0;
    }
    EXPECT_TRUE(allowed) << line;
  }
}

TEST(Module, DrawsAFrameThroughItsEntry) {
  void* const module = dlopen(VANTOREL_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << dlerror();
  ScriptedHost host(16);
  host.entry = reinterpret_cast<PF_EffectMain>(dlsym(module, PF_EFFECT_ENTRY));
  ASSERT_NE(host.entry, nullptr);
  for (const std::int32_t command : {CMD_GLOBAL_SETUP, CMD_ABOUT, CMD_PARAMS_SETUP, CMD_FRAME_SETUP, CMD_RENDER,
                                     CMD_PRE_RENDER, CMD_SMART_RENDER, CMD_GLOBAL_SETDOWN}) {
    EXPECT_EQ(host.run(command), 0) << command;
  }
  EXPECT_STREQ(host.out.return_msg, "About 2.0");
  EXPECT_EQ(host.samples.size(), 2u * 48u);
  EXPECT_EQ(dlclose(module), 0);
}
