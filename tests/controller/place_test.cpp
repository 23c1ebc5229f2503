#include "controller/Place.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>

#include "TempFolder.h"
#include "controller/Log.h"
#include "controller/TimeZone.h"

namespace controller {
namespace {

namespace fs = std::filesystem;

/// A small zone directory: three zones of the table, one that only the older table has, and links.
class ZoneDirectory {
 public:
  ZoneDirectory() {
    fs::create_directories(folder_ / "zoneinfo/Europe");
    fs::create_directories(folder_ / "zoneinfo/America");
    fs::create_directories(folder_ / "zoneinfo/US");
    for (const char* zone : {"Europe/Berlin", "Europe/Oslo", "America/New_York", "UTC"}) {
      WriteFile(folder_ / (std::string("zoneinfo/") + zone), zone);
    }
    fs::create_symlink("../America/New_York", folder_ / "zoneinfo/US/Eastern");
    WriteFile(folder_ / "zoneinfo/zone1970.tab",
              "# comment\n"
              "DE,DK,NO\t+5230+01322\tEurope/Berlin\tmost of Germany\n"
              "US\t+404251-0740023\tAmerica/New_York\tEastern (most areas)\n"
              "broken line\n"
              "AU\t-3133+15905\tAustralia/Lord_Howe\n");
    WriteFile(folder_ / "zoneinfo/zone.tab", "NO\t+5955+01045\tEurope/Oslo\n");
    files.zoneinfo = folder_ / "zoneinfo";
    files.localtime = folder_ / "localtime";
    files.timezone = folder_ / "timezone";
  }

  void PointLocaltimeAt(const fs::path& target) {
    fs::remove(files.localtime);
    fs::create_symlink(target, files.localtime);
  }

  ZoneFiles files;

 private:
  TempFolder folder_;
};

TEST(Iso6709, ReadsTheFormsOfTheZoneTable) {
  const struct {
    const char* text;
    double latitude;
    double longitude;
  } rows[] = {
      {"+5230+01322", 52.5, 13 + 22 / 60.0},
      {"+404251-0740023", 40 + 42 / 60.0 + 51 / 3600.0, -(74 + 23 / 3600.0)},
      {"-3133+15905", -(31 + 33 / 60.0), 159 + 5 / 60.0},
      {"-0010-00005", -(10 / 60.0), -(5 / 60.0)},
  };
  for (const auto& row : rows) {
    const auto place = ReadIso6709(row.text);
    ASSERT_TRUE(place) << row.text;
    EXPECT_NEAR(place->latitude, row.latitude, 1e-6) << row.text;
    EXPECT_NEAR(place->longitude, row.longitude, 1e-6) << row.text;
  }
}

TEST(Iso6709, RefusesEverythingElse) {
  for (const char* text :
       {"", "+", "+5230", "5230+01322", "+5230+1322", "+52x0+01322", "+9130+00000", "+5230+18100",
        "+5230+01322+", "+523+01322", "++5230+01322"}) {
    EXPECT_FALSE(ReadIso6709(text)) << text;
  }
}

TEST(PlaceOfZone, IsThePrincipalCity) {
  const ZoneDirectory zones;
  const struct {
    const char* why;
    const char* zone;
    double latitude;
  } rows[] = {
      {"in the table", "Europe/Berlin", 52.5},
      {"south", "Australia/Lord_Howe", -31.55},
      {"only in the older table", "Europe/Oslo", 59.916667},
      {"a link to one in the table", "US/Eastern", 40.714167},
  };
  for (const auto& row : rows) {
    const auto place = PlaceOfZone(row.zone, zones.files);
    ASSERT_TRUE(place) << row.why;
    EXPECT_NEAR(place->latitude, row.latitude, 1e-5) << row.why;
  }
  for (const char* zone :
       {"", "UTC", "Etc/UTC", "EST5EDT,M3.2.0,M11.1.0", "broken line", "../../etc"}) {
    EXPECT_FALSE(PlaceOfZone(zone, zones.files)) << zone;
  }
}

TEST(PlaceOfZone, KnowsTheCitiesOfTheSystemsOwnTable) {
  const struct {
    const char* zone;
    double latitude;
    double longitude;
  } rows[] = {
      {"America/New_York", 40.71, -74.01},
      {"Asia/Kolkata", 22.53, 88.37},
      {"Australia/Lord_Howe", -31.55, 159.08},
  };
  for (const auto& row : rows) {
    const auto place = PlaceOfZone(row.zone);
    if (!place) GTEST_SKIP() << "this system has no zone table";
    EXPECT_NEAR(place->latitude, row.latitude, 0.01) << row.zone;
    EXPECT_NEAR(place->longitude, row.longitude, 0.01) << row.zone;
  }
}

TEST(PlaceOfZone, OfAMissingTableIsUnknown) {
  ZoneFiles files;
  files.zoneinfo = "/nonexistent";
  EXPECT_FALSE(PlaceOfZone("Europe/Berlin", files));
}

TEST(TimeZoneName, ComesFromTheEnvironmentFirst) {
  ZoneDirectory zones;
  zones.PointLocaltimeAt(zones.files.zoneinfo / "Europe/Berlin");
  const struct {
    std::string given;
    std::string name;
  } rows[] = {
      {"America/New_York", "America/New_York"},
      {":America/New_York", "America/New_York"},
      {"EST5EDT,M3.2.0,M11.1.0", "EST5EDT,M3.2.0,M11.1.0"},
      {"", "UTC"},
      {"/usr/share/zoneinfo/Asia/Kolkata", "Asia/Kolkata"},
      {":" + zones.files.localtime.string(), "Europe/Berlin"},
      {"/nonexistent/file", ""},
  };
  for (const auto& row : rows) {
    const EnvironmentScope zone("TZ", row.given);
    EXPECT_EQ(TimeZoneName(zones.files), row.name) << row.given;
  }
}

TEST(UnknownTimeZone, IsWhatIsNeitherAFileNorARule) {
  const EnvironmentScope noFolder("TZDIR", std::nullopt);
  ZoneDirectory zones;
  const struct {
    std::string given;
    std::string unknown;
  } rows[] = {
      {"", ""},
      {":", ""},
      {"America/New_York", ""},
      {":America/New_York", ""},
      {(zones.files.zoneinfo / "America/New_York").string(), ""},
      {"UTC0", ""},
      {"EST5EDT,M3.2.0,M11.1.0", ""},
      {"<-01>1<+00>,M3.5.0/0,M10.5.0/1", ""},
      {"TST-00:00:30", ""},
      {"America/New_Yrok", "America/New_Yrok"},
      {":America/New_Yrok", "America/New_Yrok"},
      {"America", "America"},
      {"/nonexistent/file", "/nonexistent/file"},
  };
  for (const auto& row : rows) {
    const EnvironmentScope zone("TZ", row.given);
    EXPECT_EQ(UnknownTimeZone(zones.files), row.unknown) << row.given;
  }
  const EnvironmentScope zone("TZ", std::nullopt);
  EXPECT_EQ(UnknownTimeZone(zones.files), "");
}

TEST(TimeZoneName, ElseFromTheSystemsFiles) {
  const EnvironmentScope zone("TZ", std::nullopt);
  ZoneDirectory zones;
  EXPECT_EQ(TimeZoneName(zones.files), "");
  WriteFile(zones.files.timezone, "Europe/Oslo\n");
  EXPECT_EQ(TimeZoneName(zones.files), "Europe/Oslo");
  zones.PointLocaltimeAt(zones.files.zoneinfo / "Europe/Berlin");
  EXPECT_EQ(TimeZoneName(zones.files), "Europe/Berlin");
  zones.PointLocaltimeAt("zoneinfo/posix/America/New_York");
  EXPECT_EQ(TimeZoneName(zones.files), "America/New_York");
  zones.PointLocaltimeAt("localtime");
  EXPECT_EQ(TimeZoneName(zones.files), "Europe/Oslo") << "a link to itself leads nowhere";
}

TEST(ReloadTimeZone, SeesAnotherFileOfTheSameName) {
  const TempFolder folder;
  if (!fs::exists("/usr/share/zoneinfo/Asia/Kolkata")) GTEST_SKIP() << "this system has no zones";
  fs::create_symlink("/usr/share/zoneinfo/Asia/Kolkata", folder / "localtime");
  const EnvironmentScope zone("TZ", ":" + (folder / "localtime").string());
  EXPECT_EQ(OffsetText(0), "+05:30");
  fs::remove(folder / "localtime");
  fs::create_symlink("/usr/share/zoneinfo/UTC", folder / "localtime");
  ReloadTimeZone();
  EXPECT_EQ(OffsetText(0), "+00:00");
}

TEST(Place, MustBeOnTheEarth) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(IsValid({90, -180}));
  EXPECT_FALSE(IsValid({90.0001, 0}));
  EXPECT_FALSE(IsValid({0, 180.0001}));
  EXPECT_FALSE(IsValid({std::nan(""), 0}));
  EXPECT_FALSE(IsValid({0, -infinity}));
}

TEST(Degrees, ReadBackAsTheyWere) {
  for (const double degrees : {0.0, -0.0015, 13.366667, 51.4779, -179.99999999999997}) {
    EXPECT_EQ(ReadDegrees(DegreesText(degrees)), degrees);
  }
  for (const char* text : {"", "abc", "1,5", "1.5x", " 1", "--1", "0x10"}) {
    EXPECT_FALSE(ReadDegrees(text)) << text;
  }
  EXPECT_EQ(ReadDegrees("+7"), 7.0);
}

}  // namespace
}  // namespace controller
