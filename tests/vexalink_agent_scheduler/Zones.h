#pragma once

/// Zones as rules that no update of the zone data moves.
namespace zones {

inline constexpr char kUtc[] = "UTC0";
inline constexpr char kNewYork[] = "EST5EDT,M3.2.0,M11.1.0";
/// Sets its clocks by half an hour.
inline constexpr char kLordHowe[] = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";
/// A station in Antarctica: by two hours.
inline constexpr char kTroll[] = "<+00>0<+02>-2,M3.5.0/1,M10.5.0/3";
/// As another station did: by three hours.
inline constexpr char kThreeHours[] = "<+08>-8<+11>-11,M3.1.0/2,M10.1.0/5";
/// Changes at midnight: one day a year begins at 1:00, another has its last hour twice.
inline constexpr char kMidnight[] = "<-03>3<-02>,M10.3.0/0,M2.3.0/0";
/// Goes forward at the midnight with which a month may begin, into what it calls standard time.
inline constexpr char kFirstMidnight[] = "<+01>-1<+00>0,M10.1.0/0,M3.1.0/0";
inline constexpr char kKolkata[] = "IST-5:30";
/// Three and a half hours behind in winter: the offset's minutes are negative.
inline constexpr char kStJohns[] = "NST3:30NDT,M3.2.0,M11.1.0";

}  // namespace zones
