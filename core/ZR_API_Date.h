// Calendar arithmetic on the proleptic Gregorian calendar, without time zones.
// Dates are day, month, year; times are seconds of the day; a time stamp is seconds since 1970-01-01, the date read as
// if it were UTC. A date with a zero field is empty. Dates are not validated: what lies outside a month follows the
// rule that Add moves one day at a time and looks for a month's end by equality.
#ifndef ZR_API_DATE_H
#define ZR_API_DATE_H

struct ZR_Text;
struct ZR_TextArray;

struct ZR_Date {
    short day;    // 1..31; 0 = empty
    short month;  // 1..12
    short year;

    void Current();                   // today, local time
    void Add(long days);              // negative = back
    void PreviousSunday();            // a Sunday stays
    long GetDayNumber() const;        // 0 Sunday to 6 Saturday
    long GetKalenderwoche() const;    // ISO 8601 week
    long GetDayNumberInYear() const;  // 1 = January 1st; 1 for an empty or impossible date
    void AddMonth(long n);            // Required: day stays, also behind the month's end; n below 1 = nothing
    bool IsEndOfMonth() const;
    void EndOfMonth();                  // month outside 1..12 = nothing
    long GetQuartal() const;            // 1..4; 0 for a month outside 1..12
    long GetQuartalAndSetToFirstDay();  // Required: a month outside 1..12 gives 1 and day 1, the month stays
};

struct ZR_TimeRange {
    ZR_Date startDate;  // derived from startStamp
    ZR_Date endDate;    // derived from endStamp
    long startTime;     // seconds of the day
    long endTime;
    unsigned long startStamp;  // seconds since 1970; 0 = not set
    unsigned long endStamp;

    void CalcFromTimeStamp();                      // dates and times from the stamps
    void Union(const ZR_TimeRange* other);         // grown to hold the other; not set = becomes the other
    void Intersection(const ZR_TimeRange* other);  // cut to the other, each end by itself
    unsigned long GetDuration() const;             // seconds; 0 if the end lies before the start
    void Add(long seconds);                        // moves both ends
    void CheckAndCorrect();                        // swaps ends in the wrong order
};

long ZR_DateDifference(ZR_Date a, ZR_Date b);        // days from a to b; 0 if empty, or if b is no day Add reaches
long ZR_DateDifferenceMonths(ZR_Date a, ZR_Date b);  // calendar months, both ends counted; 0 if b is earlier
bool ZR_DateIsLess(const ZR_Date* a, const ZR_Date* b);
bool ZR_DateIsLessEqual(const ZR_Date* a, const ZR_Date* b);
bool ZR_DateIsGreater(const ZR_Date* a, const ZR_Date* b);
bool ZR_DateIsGreaterEqual(const ZR_Date* a, const ZR_Date* b);
long ZR_DaysOfMonth(long month, long year);                             // 28..31; 0 for a month outside 1..12
void ZR_AddMonth2Date(ZR_Date* date, long n);                           // AddMonth, then day at most the month's last
ZR_Date ZR_GetOstersonntag(short year);                                 // Easter Sunday
unsigned long ZR_Date2Seconds(const ZR_Date* date, long secondsOfDay);  // stamp; day below 1 = 0
void ZR_Seconds2Date(unsigned long stamp, ZR_Date* date, long* secondsOfDay);
long ZR_CurrentTime();                         // local seconds since midnight
unsigned long ZR_CurrentTimeStamp();           // of the local clock, not UTC
long ZR_GetCurrentTimeZoneOffset();            // seconds east of UTC
long ZR_GetTimeInfo(long seconds, long part);  // part 1 hours, 2 minutes, 3 seconds; else 0
void ZR_Longint2Time(long seconds, long* hours, long* minutes, long* secs);
void ZR_DateToString(const ZR_Date* date, long format, ZR_Text* text);  // the host's format number; appended
void ZR_DayTimeToString(long seconds, long format, ZR_Text* text);      // the host's format number; appended
// The format's %-codes filled in; result is disposed first, empty for an empty date; names [1..], Monday first.
void ZR_FormatDateTime(const ZR_Date* date, long seconds, const ZR_TextArray* monthNames, const ZR_TextArray* dayNames,
                       const ZR_Text* format, ZR_Text* result);

#endif
