#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "effect/Parameters.h"
#include "effect/StringTable.h"
#include "tests/effect/ScriptedHost.h"

namespace {

const std::string kSetupFailed = "Vantorel could not be initialized.";
const std::string kRegister = "register_string_table 4065";
const std::string kUnregister = "unregister_string_table table";

}  // namespace

TEST(Dispatch, UnknownCommandsDoNothing) {
  ScriptedHost host;
  for (std::int32_t command = -3; command < 40; ++command) {
    if (std::set{0, 1, 3, 4, 10, 11, 23, 24}.count(command) == 0) {
      EXPECT_EQ(host.run(command), 0) << command;
    }
  }
  EXPECT_EQ(host.run(INT32_MIN), 0);
  EXPECT_EQ(host.log, Log{});
  EXPECT_TRUE(host.outIs());
}

TEST(StringTable, HasTheBytesThatHostsRead) {
  ScriptedHost host;
  host.run(CMD_GLOBAL_SETUP);
  // Words of 8 bytes, as a host sees them from the reference on.
  const auto* const header = static_cast<const std::uint64_t*>(host.registered_table);
  const auto* const rows = reinterpret_cast<const std::uint64_t*>(header[2]);
  EXPECT_STREQ(reinterpret_cast<const char*>(header[0]), "FX");
  EXPECT_EQ(header[1], 7u);
  EXPECT_EQ(header[3], 0u);
  EXPECT_EQ(std::memcmp(&FX_G_zref, &host.registered_table, 8), 0);
  host.strings = {
      "",           "Upper Left",  "Upper Right",
      "Lower Left", "Lower Right", "Vantorel cannot allocate a buffer larger than %d pixels in either dimension."};
  for (std::size_t i = 0; i < 7; ++i) {
    const std::uint64_t* const row = rows + 4 * i;
    const std::uint64_t filler = i < 6 ? 0 : ~std::uint64_t{0};
    EXPECT_TRUE(row[1] == filler && row[2] == filler && row[3] == 0 && (row[0] != 0) == (i < 6)) << i;
    if (i < 6) {
      const std::string text = reinterpret_cast<const char*>(row[0]);
      const std::string key = "$$$/KZ/Vantorel/LStr/000" + std::to_string(i) + "=";
      host.strings[0] = i == 0 ? text.substr(key.size()) : host.strings[0];
      EXPECT_EQ(text, key + host.strings[i]);
    }
  }
  EXPECT_EQ(host.run(CMD_ABOUT), 0);
  const std::string shown = host.out.return_msg;
  EXPECT_EQ(shown.find("Vantorel, v2.0#{cr}#{cr}"), 0u);
  EXPECT_NE(shown.find("#{cr}#{cr}Distort an image to a convex quadrilateral.", 24), std::string::npos);
  EXPECT_EQ(host.out.out_flags & OUT_FLAG_SHOW_MESSAGE, 0u);
}

TEST(GlobalSetup, DeclaresTheEffectAndKeepsTheHostsReference) {
  for (const bool host_allocates : {true, false}) {
    ScriptedHost host;
    host.in.global_data = nullptr;
    if (!host_allocates) {
      host.utilities.new_handle = nullptr;
      host.utilities.dispose_handle = nullptr;
    }
    EXPECT_EQ(host.run(CMD_GLOBAL_SETUP), 0);
    ASSERT_NE(host.in.global_data, nullptr);
    EXPECT_EQ(*static_cast<void**>(*host.in.global_data), host.replacement_table);
    EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
      out.version = 0x00100600;
      out.global_data = host.in.global_data;
      out.out_flags = 0x02000240;
      out.out_flags2 |= 0x1000;
    }));
    host.fail("unregister_string_table", 1, 73);  // ignored
    EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);
    EXPECT_TRUE(host.in.global_data == nullptr && host.out.global_data == nullptr);
    EXPECT_EQ(host.log, host_allocates ? (Log{kRegister, "new_handle 8", kUnregister, "dispose_handle handle"})
                                       : (Log{kRegister, kUnregister}));
    EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);  // no block: nothing to undo
    EXPECT_EQ(host.log.back(), host_allocates ? "dispose_handle handle" : kUnregister);
  }
}

TEST(GlobalSetup, LeavesNothingBehindOnFailure) {
  for (const bool registers : {true, false}) {
    for (const bool reference_is_null : {true, false}) {
      ScriptedHost host;
      host.in.global_data = nullptr;
      host.replacement_table = reference_is_null ? nullptr : host.replacement_table;
      host.fail(registers ? "new_handle" : "register_string_table", 1, 71);
      host.fail("unregister_string_table", 1, 72);  // ignored
      EXPECT_EQ(host.run(CMD_GLOBAL_SETUP), registers ? ERR_OUT_OF_MEMORY : 71);
      EXPECT_EQ(host.log, Log{kRegister} + (registers ? Log{"new_handle 8"} : Log{}) +
                              (reference_is_null ? Log{} : Log{kUnregister}) + Log{"strcpy " + kSetupFailed});
      EXPECT_EQ(host.in.global_data, nullptr);
      EXPECT_TRUE(host.outHasMessages({kSetupFailed}));
    }
  }
}

TEST(ParamsSetup, AddsTheFourPointsUntilOneIsRefused) {
  const std::string names[] = {"Upper Left", "Upper Right", "Lower Left", "Lower Right"};
  const std::string defaults[] = {"0 0", "6553600 0", "0 6553600", "6553600 6553600"};
  for (int refused = 1; refused <= 5; ++refused) {
    ScriptedHost host;
    host.fail("add_param", refused, 81);
    EXPECT_EQ(host.run(CMD_PARAMS_SETUP), refused <= 4 ? 81 : 0);
    Log log;
    for (int i = 0; i < 4; ++i) {
      log = log + Log{"lookup_string table " + std::to_string(i + 1) + " 0 null", "strcpy " + names[i]};
      if (i < refused) {
        log.push_back("add_param fx -1 0 0 0 0 6 " + names[i] + " 0 " + defaults[i] + " " + defaults[i]);
      }
    }
    EXPECT_EQ(host.log, log);
    EXPECT_TRUE(host.outIs([](PF_OutData& out) { out.param_count = 5; }));
  }
}

TEST(Corners, AreReadOnceRoundAndShiftedAtTheEnd) {
  const double values[4][2] = {{-1, 1.5}, {2, 0.25}, {3, 3}, {4, 4}};
  for (int failing = 0; failing <= 8; ++failing) {  // the 9th of eight calls: none
    ScriptedHost host;
    host.setCorners(values);
    host.fail(failing % 2 == 0 ? "checkout_param" : "checkin_param", failing / 2 + 1, 55);
    M_Vector2T<double> p[4] = {{9, 9}, {9, 9}, {9, 9}, {9, 9}};
    EXPECT_EQ(GetCornerParams(&host.in, p, 7, -3), failing < 8 ? 55 : 0);
    EXPECT_EQ(host.log, Log(kReadCorners.begin(), kReadCorners.begin() + std::min(failing + 1, 8)));
    for (int i = 0; i < 4; ++i) {  // Read values stay; they are shifted when all of them are read.
      EXPECT_EQ(p[i].x, 2 * i >= failing ? 9 : values[i][0] + (failing == 8 ? 7 : 0)) << failing << " " << i;
      EXPECT_EQ(p[i].y, 2 * i >= failing ? 9 : values[i][1] - (failing == 8 ? 3 : 0)) << failing << " " << i;
    }
    EXPECT_TRUE(host.outIs());
  }
}
