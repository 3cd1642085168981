// The locales that the formats know.
#include <algorithm>

#include "host/Formats.h"

namespace zrhost {

namespace {

using Words = const char16_t* const;

Words kEnMonths[] = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                     u"July",    u"August",   u"September", u"October", u"November", u"December"};
Words kEnShortMonths[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                          u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
Words kEnDays[] = {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
Words kEnShortDays[] = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
Words kEnTime[] = {u"hour", u"hours", u"minute", u"minutes", u"second", u"seconds"};

Words kDeMonths[] = {u"Januar", u"Februar", u"März",      u"April",   u"Mai",      u"Juni",
                     u"Juli",   u"August",  u"September", u"Oktober", u"November", u"Dezember"};
Words kDeShortMonths[] = {u"Jan", u"Feb", u"Mär", u"Apr", u"Mai", u"Jun",
                          u"Jul", u"Aug", u"Sep", u"Okt", u"Nov", u"Dez"};
Words kDeDays[] = {u"Sonntag", u"Montag", u"Dienstag", u"Mittwoch", u"Donnerstag", u"Freitag", u"Samstag"};
Words kDeShortDays[] = {u"So", u"Mo", u"Di", u"Mi", u"Do", u"Fr", u"Sa"};
Words kDeTime[] = {u"Stunde", u"Stunden", u"Minute", u"Minuten", u"Sekunde", u"Sekunden"};

Words kFrMonths[] = {u"janvier", u"février", u"mars",      u"avril",   u"mai",      u"juin",
                     u"juillet", u"août",    u"septembre", u"octobre", u"novembre", u"décembre"};
Words kFrShortMonths[] = {u"janv.", u"févr.", u"mars",  u"avr.", u"mai",  u"juin",
                          u"juil.", u"août",  u"sept.", u"oct.", u"nov.", u"déc."};
Words kFrDays[] = {u"dimanche", u"lundi", u"mardi", u"mercredi", u"jeudi", u"vendredi", u"samedi"};
Words kFrShortDays[] = {u"dim.", u"lun.", u"mar.", u"mer.", u"jeu.", u"ven.", u"sam."};
Words kFrTime[] = {u"heure", u"heures", u"minute", u"minutes", u"seconde", u"secondes"};

Words kEsMonths[] = {u"enero", u"febrero", u"marzo",      u"abril",   u"mayo",      u"junio",
                     u"julio", u"agosto",  u"septiembre", u"octubre", u"noviembre", u"diciembre"};
Words kEsShortMonths[] = {u"ene", u"feb", u"mar",  u"abr", u"may", u"jun",
                          u"jul", u"ago", u"sept", u"oct", u"nov", u"dic"};
Words kEsDays[] = {u"domingo", u"lunes", u"martes", u"miércoles", u"jueves", u"viernes", u"sábado"};
Words kEsShortDays[] = {u"dom", u"lun", u"mar", u"mié", u"jue", u"vie", u"sáb"};
Words kEsTime[] = {u"hora", u"horas", u"minuto", u"minutos", u"segundo", u"segundos"};

Words kItMonths[] = {u"gennaio", u"febbraio", u"marzo",     u"aprile",  u"maggio",   u"giugno",
                     u"luglio",  u"agosto",   u"settembre", u"ottobre", u"novembre", u"dicembre"};
Words kItShortMonths[] = {u"gen", u"feb", u"mar", u"apr", u"mag", u"giu",
                          u"lug", u"ago", u"set", u"ott", u"nov", u"dic"};
Words kItDays[] = {u"domenica", u"lunedì", u"martedì", u"mercoledì", u"giovedì", u"venerdì", u"sabato"};
Words kItShortDays[] = {u"dom", u"lun", u"mar", u"mer", u"gio", u"ven", u"sab"};
Words kItTime[] = {u"ora", u"ore", u"minuto", u"minuti", u"secondo", u"secondi"};

Words kNlMonths[] = {u"januari", u"februari", u"maart",     u"april",   u"mei",      u"juni",
                     u"juli",    u"augustus", u"september", u"oktober", u"november", u"december"};
Words kNlShortMonths[] = {u"jan", u"feb", u"mrt", u"apr", u"mei", u"jun",
                          u"jul", u"aug", u"sep", u"okt", u"nov", u"dec"};
Words kNlDays[] = {u"zondag", u"maandag", u"dinsdag", u"woensdag", u"donderdag", u"vrijdag", u"zaterdag"};
Words kNlShortDays[] = {u"zo", u"ma", u"di", u"wo", u"do", u"vr", u"za"};
Words kNlTime[] = {u"uur", u"uur", u"minuut", u"minuten", u"seconde", u"seconden"};

Words kPtMonths[] = {u"janeiro", u"fevereiro", u"março",    u"abril",   u"maio",     u"junho",
                     u"julho",   u"agosto",    u"setembro", u"outubro", u"novembro", u"dezembro"};
Words kPtShortMonths[] = {u"jan", u"fev", u"mar", u"abr", u"mai", u"jun",
                          u"jul", u"ago", u"set", u"out", u"nov", u"dez"};
Words kPtDays[] = {u"domingo",      u"segunda-feira", u"terça-feira", u"quarta-feira",
                   u"quinta-feira", u"sexta-feira",   u"sábado"};
Words kPtShortDays[] = {u"dom", u"seg", u"ter", u"qua", u"qui", u"sex", u"sáb"};
Words kPtTime[] = {u"hora", u"horas", u"minuto", u"minutos", u"segundo", u"segundos"};

struct Language {
    const char* code;
    Words *months, *shortMonths, *days, *shortDays, *time;
    const char16_t *mediumDate, *longDate;
};
constexpr Language kLanguages[] = {
    {"en", kEnMonths, kEnShortMonths, kEnDays, kEnShortDays, kEnTime, u"EEE, MMM d, yyyy", u"EEEE, MMMM d, yyyy"},
    {"de", kDeMonths, kDeShortMonths, kDeDays, kDeShortDays, kDeTime, u"EEE, d. MMM yyyy", u"EEEE, d. MMMM yyyy"},
    {"fr", kFrMonths, kFrShortMonths, kFrDays, kFrShortDays, kFrTime, u"EEE d MMM yyyy", u"EEEE d MMMM yyyy"},
    {"es", kEsMonths, kEsShortMonths, kEsDays, kEsShortDays, kEsTime, u"EEE, d MMM yyyy",
     u"EEEE, d 'de' MMMM 'de' yyyy"},
    {"it", kItMonths, kItShortMonths, kItDays, kItShortDays, kItTime, u"EEE d MMM yyyy", u"EEEE d MMMM yyyy"},
    {"nl", kNlMonths, kNlShortMonths, kNlDays, kNlShortDays, kNlTime, u"EEE d MMM yyyy", u"EEEE d MMMM yyyy"},
    {"pt", kPtMonths, kPtShortMonths, kPtDays, kPtShortDays, kPtTime, u"EEE, d 'de' MMM 'de' yyyy",
     u"EEEE, d 'de' MMMM 'de' yyyy"},
};

struct Country {
    const char* name;
    char16_t decimal, thousand;
    const char16_t* shortDate;  // gives the order and the separator
    bool twelveHours;
    const char16_t* currency;
    const char16_t *mediumDate, *longDate;  // null = those of the language
};
constexpr Country kCountries[] = {
    {"en-US", u'.', u',', u"M/d/yyyy", true, u"$", nullptr, nullptr},
    {"en-GB", u'.', u',', u"dd/MM/yyyy", false, u"£", u"EEE, d MMM yyyy", u"EEEE, d MMMM yyyy"},
    {"en-AU", u'.', u',', u"d/MM/yyyy", true, u"$", u"EEE, d MMM yyyy", u"EEEE, d MMMM yyyy"},
    {"en-CA", u'.', u',', u"yyyy-MM-dd", true, u"$", nullptr, nullptr},
    {"de-DE", u',', u'.', u"dd.MM.yyyy", false, u"€", nullptr, nullptr},
    {"de-AT", u',', u'.', u"dd.MM.yyyy", false, u"€", nullptr, nullptr},
    {"de-CH", u'.', u'\'', u"dd.MM.yyyy", false, u"CHF", nullptr, nullptr},
    {"fr-FR", u',', u' ', u"dd/MM/yyyy", false, u"€", nullptr, nullptr},
    {"fr-BE", u',', u' ', u"dd/MM/yyyy", false, u"€", nullptr, nullptr},
    {"fr-CA", u',', u' ', u"yyyy-MM-dd", false, u"$", nullptr, nullptr},
    {"fr-CH", u'.', u'\'', u"dd.MM.yyyy", false, u"CHF", nullptr, nullptr},
    {"es-ES", u',', u'.', u"dd/MM/yyyy", false, u"€", nullptr, nullptr},
    {"it-IT", u',', u'.', u"dd/MM/yyyy", false, u"€", nullptr, nullptr},
    {"nl-NL", u',', u'.', u"dd-MM-yyyy", false, u"€", nullptr, nullptr},
    {"pt-BR", u',', u'.', u"dd/MM/yyyy", false, u"R$", nullptr, nullptr},
    {"pt-PT", u',', u' ', u"dd/MM/yyyy", false, u"€", nullptr, nullptr},
};

// The letters of a pattern in their order, and what stands between the first two.
void ReadOrder(Locale* locale, std::u16string_view pattern) {
    int found = 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (i > 0 && pattern[i] == pattern[i - 1]) continue;
        if (pattern[i] == u'd' || pattern[i] == u'M' || pattern[i] == u'y')
            locale->order[found++] = pattern[i] == u'd' ? 'D' : pattern[i] == u'M' ? 'M' : 'Y';
        else if (found == 1) locale->dateSeparator = pattern[i];
    }
}

}  // namespace

Locale FindLocale(std::string_view name) {
    std::string wanted(name);
    std::replace(wanted.begin(), wanted.end(), '_', '-');
    std::string language = wanted.substr(0, wanted.find('-'));
    const Country* country = std::find_if(std::begin(kCountries), std::end(kCountries),
                                          [&](const Country& row) { return wanted == row.name; });
    if (country == std::end(kCountries))
        country = std::find_if(std::begin(kCountries), std::end(kCountries),
                               [&](const Country& row) { return language == std::string_view(row.name).substr(0, 2); });
    if (country == std::end(kCountries)) country = kCountries;
    const Language* words = std::find_if(std::begin(kLanguages), std::end(kLanguages), [&](const Language& row) {
        return std::string_view(country->name).substr(0, 2) == row.code;
    });

    Locale locale;
    locale.name = country->name;
    locale.decimal = country->decimal;
    locale.thousand = country->thousand;
    ReadOrder(&locale, country->shortDate);
    locale.twelveHours = country->twelveHours;
    locale.currency = country->currency;
    locale.am = u"AM";
    locale.pm = u"PM";
    locale.months = words->months;
    locale.shortMonths = words->shortMonths;
    locale.days = words->days;
    locale.shortDays = words->shortDays;
    locale.timeWords = words->time;
    locale.shortDate = country->shortDate;
    locale.mediumDate = country->mediumDate ? country->mediumDate : words->mediumDate;
    locale.longDate = country->longDate ? country->longDate : words->longDate;
    locale.shortTime = country->twelveHours ? u"h:mm a" : u"HH:mm";
    locale.mediumTime = country->twelveHours ? u"h:mm:ss a" : u"HH:mm:ss";
    locale.longTime = locale.mediumTime;
    return locale;
}

}  // namespace zrhost
