// A small state's vaccine programme, invented from a seed.
#include <array>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lotrix/connection.h"
#include "lotrix/schema.h"
#include "src/database/statement.h"
#include "src/platform/dates.h"
#include "src/platform/values.h"

namespace lotrix {

namespace {

// The library's distributions give different numbers on different systems; the
// engine beneath them does not.
class Chance {
 public:
  explicit Chance(std::uint32_t seed) : engine_(seed) {}

  std::int32_t Below(std::int32_t count) {
    const std::uint64_t drawn = engine_();
    return static_cast<std::int32_t>((drawn * static_cast<std::uint64_t>(count)) >> 32);
  }
  std::int32_t Between(std::int32_t first, std::int32_t last) {
    return first + Below(last - first + 1);
  }
  bool OneIn(std::int32_t count) { return Below(count) == 0; }
  template <class Choices>
  const auto& OneOf(const Choices& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<std::int32_t>(choices.size())))];
  }
  template <class Words>
  std::string Word(const Words& words) {
    return std::string(OneOf(words));
  }
  char Letter() { return static_cast<char>('A' + Below(26)); }
  std::string Day(std::int32_t firstYear, std::int32_t lastYear) {
    const auto year = static_cast<std::int16_t>(Between(firstYear, lastYear));
    const auto month = static_cast<std::uint8_t>(Between(1, 12));
    const auto day = static_cast<std::uint8_t>(Between(1, 28));
    return DateText({year, month, day});
  }

 private:
  std::mt19937 engine_;
};

struct Contract {
  std::string maker;
  std::string number;
  std::string ndcNumber;
  double cost;
};

struct Vaccine {
  std::string code;
  std::string description;
  std::int32_t seriesDoses;
  std::int32_t cents;  // for one dose
  std::vector<std::string> makers;
  // The contract table's rows with the mark off are what rules call active; those
  // with the mark on are what the list of lots on hand goes by.
  bool active;
  bool listed;
  std::vector<Contract> contracts = {};  // one for each maker
};

struct ZipCode {
  std::string zip;
  std::string county;
  std::string otherCounty;  // empty for most
};

struct Lot {
  std::string depotPin;
  std::string number;
  std::string maker;
  std::string expiry;
  const Vaccine* vaccine;
};

struct Action {
  std::int32_t code;
  std::string_view status;
};

struct Programme {
  Connection& connection;
  Chance chance;
  std::vector<Vaccine> vaccines = {};
  std::vector<ZipCode> zipCodes = {};
  std::vector<std::string> depotPins = {};
  std::vector<std::string> pins = {};
  std::vector<Lot> lots = {};
  // The last key of each kind.
  std::int32_t lastProvider = 0;
  std::int32_t lastPassedOn = 0;
  std::int32_t lastDistribution = 0;
  std::int32_t lastInventory = 0;
  std::int32_t lastReport = 0;
};

// Names of nobody and of nowhere.
constexpr auto kNameBegins = std::to_array<std::string_view>(
    {"AMBER", "BRAMBLE", "CINDER",  "DAPPLE",  "EMBER",  "FENNEL", "GIMBLE", "HAZEL",
     "INGLE", "JASPER",  "KESTREL", "LINNET",  "MARROW", "NETTLE", "OSIER",  "PEBBLE",
     "QUILL", "RUSSET",  "SORREL",  "THISTLE", "UMBER",  "VETCH",  "WILLOW", "YARROW"});
constexpr auto kNameEnds =
    std::to_array<std::string_view>({"BROOK", "WICK", "THORN", "WORTH", "MERE", "LATCH"});
constexpr auto kFirstNames = std::to_array<std::string_view>(
    {"ALBRA", "BENNO", "CORALA", "DESMIN", "ELVIRO", "FARREN", "GELDA", "HOLLIS", "ISMAY", "JORUN",
     "KERRIL", "LUNETA", "MERRIN", "NOLWEN", "ORLA"});
constexpr auto kFacilities = std::to_array<std::string_view>(
    {"FAMILY CLINIC", "PEDIATRICS", "COUNTY HEALTH", "COMMUNITY HEALTH CENTER", "MEDICAL GROUP",
     "HOSPITAL", "SCHOOL HEALTH", "RURAL HEALTH CLINIC"});
constexpr auto kStreets = std::to_array<std::string_view>(
    {"LANTERN ST", "ORCHARD LOOP", "KITE AVE", "COPPER LN", "MILL RACE RD", "SUNDIAL BLVD"});

constexpr auto kSubdivisions = std::to_array<std::string_view>(
    {"NORTH", "NORTHEAST", "EAST", "SOUTH", "SOUTHWEST", "WEST", "CENTRAL"});
constexpr auto kFundingCodes = std::to_array<std::string_view>({"1", "2", "3", "4"});
constexpr auto kSources = std::to_array<std::string_view>({"A", "B", "C", "D", "E", "F", "G", "Z"});
// There is no action 10.
constexpr auto kActions = std::to_array<Action>({{1, "Di"},
                                                 {2, "Re"},
                                                 {3, "Sp"},
                                                 {4, "Ex"},
                                                 {5, "Lo"},
                                                 {6, "Im"},
                                                 {7, "Fa"},
                                                 {8, "Tr"},
                                                 {9, "Bo"},
                                                 {11, "Ac"},
                                                 {12, "Us"}});

std::vector<Vaccine> Vaccines() {
  return {
      {"DTAP", "DIPHTHERIA TETANUS PERTUSSIS", 5, 1785, {"MKRA", "MKRB"}, true, true},
      {"DT", "DIPHTHERIA TETANUS PEDIATRIC", 5, 4210, {"MKRA"}, true, false},
      {"FLU", "INFLUENZA", 2, 1370, {"MKRA", "MKRC"}, true, true},
      {"FLU-PF", "INFLUENZA PRESERVATIVE FREE", 2, 1645, {"MKRA"}, true, true},
      {"HEPA", "HEPATITIS A PEDIATRIC", 2, 1890, {"MKRB", "MKRD"}, true, true},
      {"HEPB", "HEPATITIS B PEDIATRIC", 3, 1240, {"MKRB", "MKRD"}, true, true},
      {"HIB", "HAEMOPHILUS INFLUENZAE B", 4, 930, {"MKRA", "MKRD"}, true, true},
      {"HPV9", "HUMAN PAPILLOMAVIRUS", 3, 16820, {"MKRD"}, true, true},
      {"IPV", "INACTIVATED POLIO", 4, 1305, {"MKRA"}, true, true},
      {"MCV4", "MENINGOCOCCAL CONJUGATE", 2, 8960, {"MKRA", "MKRC"}, true, true},
      {"MENB", "MENINGOCOCCAL B", 3, 12455, {"MKRB"}, true, true},
      {"MMR", "MEASLES MUMPS RUBELLA", 2, 2035, {"MKRD"}, true, true},
      {"MMR-V", "MEASLES MUMPS RUBELLA VARICELLA", 2, 13275, {"MKRD"}, true, true},
      {"PCV13", "PNEUMOCOCCAL CONJUGATE", 4, 13610, {"MKRE"}, true, true},
      {"PPV23", "PNEUMOCOCCAL POLYSACCHARIDE", 2, 5140, {"MKRD"}, true, true},
      {"ROTA", "ROTAVIRUS", 3, 7015, {"MKRB", "MKRD"}, true, true},
      {"TD", "TETANUS DIPHTHERIA", 3, 1515, {"MKRA"}, true, true},
      {"TDAP", "TETANUS DIPHTHERIA PERTUSSIS", 1, 3180, {"MKRA", "MKRB"}, true, true},
      {"VAR", "VARICELLA", 2, 10395, {"MKRD"}, true, true},
      {"OPV", "ORAL POLIO", 4, 320, {"MKRE"}, false, true},
      {"PCV7", "PNEUMOCOCCAL CONJUGATE OLD", 4, 7155, {"MKRE"}, false, true},
  };
}

void Add(Programme& programme, const Statement& row) {
  static_cast<void>(programme.connection.Execute(row));
}

std::string Digits(std::int32_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

std::string InventedName(Chance& chance) {
  const std::string begin = chance.Word(kNameBegins);
  return begin + chance.Word(kNameEnds);
}

std::string InventedAddress(Chance& chance) {
  const std::string number = std::to_string(chance.Between(1, 9900));
  return number + " " + chance.Word(kStreets);
}

// Of the numbers that are kept free for examples.
std::string InventedPhone(Chance& chance) { return "(217) 555-01" + Digits(chance.Below(100), 2); }

std::int32_t PackageSize(const Vaccine& vaccine) { return vaccine.code == "MCV4" ? 5 : 10; }

// Every key once: what is there twice is refused by rules.
class Keys {
 public:
  template <class... Parts>
  bool IsNew(const Parts&... parts) {
    std::string key;
    ((key += parts, key += '|'), ...);
    return keys_.insert(std::move(key)).second;
  }

 private:
  std::set<std::string> keys_;
};

void AddReferences(Programme& programme) {
  for (const std::string_view code : kFundingCodes) {
    Add(programme,
        Statement() << "INSERT INTO funding(fundcode) VALUES('" << std::string(code) << "')");
  }
  for (const Action& action : kActions) {
    Add(programme, Statement() << "INSERT INTO actref(status, action) VALUES('"
                               << std::string(action.status) << "', " << action.code << ")");
  }
  for (std::int32_t sector = 10; sector <= 31; ++sector) {
    Add(programme, Statement() << "INSERT INTO sectoref(sector) VALUES(" << sector << ")");
  }
  for (const std::string_view subdivision : kSubdivisions) {
    Add(programme,
        Statement() << "INSERT INTO subdiv(subdiv) VALUES('" << std::string(subdivision) << "')");
  }
}

void AddZipCodes(Programme& programme) {
  const auto county = [](std::size_t number) {
    const std::size_t begin = number % kNameBegins.size();
    return std::string(kNameBegins[begin]).append(kNameEnds[begin % kNameEnds.size()]);
  };
  const auto add = [&](const std::string& zip, const std::string& name) {
    Add(programme, Statement() << "INSERT INTO zipcodes(zip, cntyname) VALUES('" << zip << "', '"
                               << name << "')");
  };
  constexpr std::int32_t kZipCodes = 150;
  for (std::int32_t i = 0; i < kZipCodes; ++i) {
    const auto number = static_cast<std::size_t>(i) / 7;
    ZipCode zipCode{Digits(69401 + i, 5), county(number), i % 30 == 13 ? county(number + 1) : ""};
    add(zipCode.zip, zipCode.county);
    // A zip code has a row for each of its towns, so a county may come twice.
    if (i % 10 == 4) add(zipCode.zip, zipCode.county);
    if (!zipCode.otherCounty.empty()) add(zipCode.zip, zipCode.otherCounty);
    programme.zipCodes.push_back(std::move(zipCode));
  }
}

void AddContract(Programme& programme, const Vaccine& vaccine, const Contract& contract,
                 bool listed) {
  const std::int32_t packageSize = PackageSize(vaccine);
  Statement row;
  row << "INSERT INTO pvaccref(vaccine, maker, begin, end, minbulk, unitsize, pkgsize, ndcno, "
      << "cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) VALUES('"
      << vaccine.code << "', '" << contract.maker << "', {1/1/2004}, ";
  if (vaccine.active) {
    row << "{12/31/2030}, ";
  } else {
    row << "{6/30/2011}, ";
  }
  row << packageSize << ", 1, " << packageSize << ", '" << contract.ndcNumber << "', "
      << contract.cost << ", '" << contract.number << "', 'Y', 'N', 'N', '" << vaccine.description
      << "', ";
  if (listed) {
    row << ".T., ";
  } else {
    row << ".F., ";
  }
  row << vaccine.seriesDoses << ")";
  Add(programme, row);
}

void AddVaccine(Programme& programme, Vaccine& vaccine) {
  Chance& chance = programme.chance;
  std::int32_t cents = vaccine.cents;
  for (const std::string& maker : vaccine.makers) {
    const std::string number = "ZZ04-" + Digits(chance.Below(10000), 4);
    const std::string ndcNumber = "99" + Digits(chance.Below(1000), 3) + "-0001-10";
    vaccine.contracts.push_back({maker, number, ndcNumber, static_cast<double>(cents) / 100.0});
    cents += 115;
  }

  Statement row;
  row << "INSERT INTO vaccref(vaccine, maxno, locactiv) VALUES('" << vaccine.code << "', "
      << vaccine.seriesDoses;
  if (vaccine.active) {
    row << ", 'Y')";
  } else {
    row << ", 'N')";
  }
  Add(programme, row);

  if (vaccine.active) {
    for (const Contract& contract : vaccine.contracts) {
      AddContract(programme, vaccine, contract, false);
    }
  }
  // One row only: a lot on hand is listed once for each.
  if (vaccine.listed) AddContract(programme, vaccine, vaccine.contracts.front(), true);
}

struct ProviderRow {
  std::string pin;  // as it is stored
  std::string name;
  std::int32_t sector;
  bool eligible;
  std::string active;  // empty for Null
};

void AddProviderRow(Programme& programme, const ProviderRow& provider) {
  Chance& chance = programme.chance;
  const ZipCode& zipCode = chance.OneOf(programme.zipCodes);
  const std::string firstName = chance.Word(kFirstNames);
  const std::string contact = firstName + " " + InventedName(chance);
  const std::string address = InventedAddress(chance);
  const std::string suite = chance.OneIn(3) ? "SUITE " + std::to_string(chance.Between(1, 40)) : "";
  const std::string city = InventedName(chance);
  const std::string phone = InventedPhone(chance);
  const std::string fax = InventedPhone(chance);
  const std::string note = chance.OneIn(4) ? "DELIVER TO THE SIDE DOOR" : "NONE";
  const std::string county = zipCode.otherCounty.empty() ? zipCode.county : "";

  Statement row;
  row << "INSERT INTO provider(pin, contact, lastname, address, addres2, city, state, zipcode, "
      << "ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, "
      << "codes, phone2, fax2, createdate, county, provid, sector, datevfc, extension, firstname, "
      << "initial, title, linkpin, alphaid, active, subdiv, cat1, cat2, cat3, cat4, chgdate, "
      << "userid) VALUES('" << provider.pin << "', '" << contact << "', '" << provider.name
      << "', '" << address << "', '" << suite << "', '" << city << "', 'ZZ', '" << zipCode.zip
      << "', '" << contact << "', '" << address << "', '" << suite << "', '" << city << "', 'ZZ', '"
      << zipCode.zip << "', '" << note << "', '" << phone << "', '" << fax << "', '";
  if (provider.eligible) row << "V";
  row << "', '" << phone << "', '" << fax << "', {" << chance.Day(1998, 2020) << "}, '" << county
      << "', " << ++programme.lastProvider << ", " << provider.sector << ", {"
      << chance.Day(2021, 2025) << "}, '" << Digits(chance.Below(1000), 3) << "', '" << firstName
      << "', '" << std::string(1, chance.Letter()) << "', ";
  if (chance.OneIn(2)) {
    row << "'MD', ";
  } else {
    row << "'RN', ";
  }
  // A branch office is linked to its parent.
  if (chance.OneIn(12)) {
    row << "'P00001', '";
  } else {
    row << "'', '";
  }
  row << "E" + Digits(chance.Below(100000), 5) << "', ";
  if (provider.active.empty()) {
    row << "Null, '";
  } else {
    row << "'" << provider.active << "', '";
  }
  row << chance.Word(kSubdivisions) << "', ";
  if (chance.OneIn(3)) {
    row << "'NO', ";
  } else {
    row << "'YES', ";
  }
  if (provider.sector < 20) {
    row << "'PUBLIC', '', '";
  } else {
    row << "'PRIVATE', '', '";
  }
  row << std::to_string(chance.Between(2015, 2022)) << "', {" << chance.Day(2021, 2025)
      << "}, 'SAMPLE')";
  Add(programme, row);
}

void AddEnrollment(Programme& programme, const std::string& storedPin) {
  Chance& chance = programme.chance;
  Statement row;
  row << "INSERT INTO enroll(pin, ensource, chgdate, userid, "
      << "allkids1, medicaid1, uninsured1, amindian1, fqhc_rhc1, vfckids1, g317kids1, statekids1, "
      << "other1, allkids2, medicaid2, uninsured2, amindian2, fqhc_rhc2, vfckids2, g317kids2, "
      << "statekids2, other2, allkids3, medicaid3, uninsured3, amindian3, fqhc_rhc3, vfckids3, "
      << "g317kids3, statekids3, other3, allkids4, medicaid4, uninsured4, amindian4, fqhc_rhc4, "
      << "vfckids4, g317kids4, statekids4, other4) VALUES('" << storedPin << "', '"
      << chance.Word(kSources) << "', {" << chance.Day(2023, 2025) << "}, 'SAMPLE'";
  for (int group = 1; group <= 4; ++group) {
    const std::int32_t medicaid = chance.Below(240);
    const std::int32_t uninsured = chance.Below(90);
    const std::int32_t amIndian = chance.Below(12);
    const std::int32_t fqhcRhc = chance.Below(40);
    const std::int32_t vfc = medicaid + uninsured + amIndian + fqhcRhc;
    const std::int32_t g317 = chance.Below(20);
    const std::int32_t state = chance.Below(30);
    const std::int32_t other = chance.Below(150);
    row << ", " << vfc + g317 + state + other << ", " << medicaid << ", " << uninsured << ", "
        << amIndian << ", " << fqhcRhc << ", " << vfc << ", " << g317 << ", " << state << ", "
        << other;
  }
  row << ")";
  Add(programme, row);
}

void AddPhysicians(Programme& programme, const std::string& pin) {
  Chance& chance = programme.chance;
  const std::int32_t physicians = chance.Below(4);
  Keys keys;
  for (std::int32_t i = 0; i < physicians; ++i) {
    const std::string lastName = InventedName(chance);
    const std::string firstName = chance.Word(kFirstNames);
    if (!keys.IsNew(lastName)) continue;
    Add(programme,
        Statement() << "INSERT INTO physicn(pin, lastname, firstname, initial, title, other1, "
                    << "medicaidno, medlicense, chgdate) VALUES('" << pin << "', '" << lastName
                    << "', '" << firstName << "', '" << std::string(1, chance.Letter())
                    << "', 'MD', '"
                    << "S" + Digits(chance.Below(1000000), 6) << "', '"
                    << "M" + Digits(chance.Below(1000000), 6) << "', '"
                    << "L" + Digits(chance.Below(1000000), 6) << "', {" << chance.Day(2020, 2025)
                    << "})");
  }
}

void AddDepots(Programme& programme) {
  programme.depotPins = {"D00001", "D00002", "D00003"};
  std::int32_t sector = 30;
  for (const std::string& pin : programme.depotPins) {
    AddProviderRow(programme, {pin, InventedName(programme.chance) + " DEPOT", sector, false, "Y"});
    sector = sector == 30 ? 31 : 30;
  }
}

std::string InventedPin(Chance& chance, std::int32_t number) {
  if (number == 0) return "P00001";
  // Each provider has a stretch of numbers of its own; E to M stand for 1 to 9.
  constexpr std::int32_t kStretch = 2731;
  std::string pin = Digits(100000 + number * kStretch + chance.Below(kStretch), 6);
  if (chance.OneIn(3)) pin[0] = static_cast<char>('E' + (pin[0] - '1'));
  return pin;
}

void AddProviders(Programme& programme) {
  Chance& chance = programme.chance;
  constexpr std::int32_t kProviders = 297;
  for (std::int32_t i = 0; i < kProviders; ++i) {
    const std::string pin = InventedPin(chance, i);
    const std::string storedPin = i % 7 == 3 ? pin + "  " : pin;
    const std::string name = InventedName(chance) + " ";
    const std::string facility = chance.Word(kFacilities);
    // Every sector has a provider.
    const std::int32_t sector = i < 20 ? 10 + i : chance.Between(10, 29);
    const bool eligible = i == 0 || chance.Below(10) < 6;
    std::string active = i == 0 || !chance.OneIn(12) ? "Y" : "N";
    // Of some nobody has ever said whether they are active.
    if (i % 100 == 77) active.clear();
    AddProviderRow(programme, {storedPin, name + facility, sector, eligible, active});
    AddEnrollment(programme, storedPin);
    AddPhysicians(programme, pin);
    programme.pins.push_back(pin);
  }
}

void AddLots(Programme& programme) {
  // Lots that will last, lots that will not, and one that has expired.
  constexpr std::array<std::pair<std::int32_t, std::int32_t>, 4> kExpiries = {
      {{2031, 2033}, {2027, 2030}, {2027, 2030}, {2016, 2025}}};
  Chance& chance = programme.chance;
  std::int32_t batch = 1000;
  for (const std::string& depotPin : programme.depotPins) {
    for (const Vaccine& vaccine : programme.vaccines) {
      if (!vaccine.active) continue;
      for (std::size_t i = 0; i < kExpiries.size(); ++i) {
        std::string number(1, chance.Letter());
        if (chance.OneIn(8)) number += '-';
        number += Digits(batch++, 4) + "-" + Digits(chance.Below(100), 2);
        const std::string expiry = chance.Day(kExpiries[i].first, kExpiries[i].second);
        const std::string maker = chance.OneOf(vaccine.makers);
        const std::int32_t size = PackageSize(vaccine) * chance.Between(5, 60);
        const std::int32_t remain = i != 0 && chance.OneIn(6) ? 0 : chance.Below(size + 1);
        // Some lots are announced and no more, of some the maker is not known.
        const bool announced = i != 0 && chance.OneIn(20);
        const bool unknownMaker = i != 0 && chance.OneIn(25);
        Statement row;
        row << "INSERT INTO lots(vaccine, lot, expiry, maker, remain, size, pin) VALUES('"
            << vaccine.code << "', '" << number << "', {" << expiry << "}, ";
        if (unknownMaker) {
          row << "Null, ";
        } else {
          row << "'" << maker << "', ";
        }
        row << remain << ", " << (announced ? 0 : size) << ", '" << depotPin << "')";
        Add(programme, row);
        programme.lots.push_back({depotPin, number, maker, expiry, &vaccine});
      }
    }
  }
}

// The first provider is sure to have something of everything.
const std::string& PinFor(Programme& programme, std::int32_t number) {
  return number < 6 ? programme.pins.front() : programme.chance.OneOf(programme.pins);
}

void AddStock(Programme& programme) {
  Chance& chance = programme.chance;
  constexpr std::int32_t kShipments = 450;
  for (std::int32_t i = 0; i < kShipments; ++i) {
    const std::string& pin = PinFor(programme, i);
    const Lot& lot = chance.OneOf(programme.lots);
    const std::int32_t doses = PackageSize(*lot.vaccine) * chance.Between(1, 12);
    // Entered without a lot, or not shipped yet: no read shows these.
    std::string number = i >= 6 && chance.OneIn(15) ? " " : lot.number;
    if (chance.OneIn(3)) std::erase(number, '-');
    Statement row;
    row << "INSERT INTO stock(pin, datein, doses, lot, vaccine, maker, expiry, tracking) VALUES('"
        << pin << "', {" << chance.Day(2022, 2025) << "}, " << doses << ", '" << number << "', '"
        << lot.vaccine->code << "', '" << lot.maker << "', {" << lot.expiry << "}, ";
    if (i < 6 || !chance.OneIn(12)) {
      row << "'"
          << "ZZ" + Digits(chance.Below(100000000), 8) << "')";
    } else if (chance.OneIn(2)) {
      row << "' ')";
    } else {
      row << "Null)";
    }
    Add(programme, row);
  }
}

void AddOrders(Programme& programme) {
  Chance& chance = programme.chance;
  Keys keys;
  constexpr std::int32_t kOrders = 240;
  for (std::int32_t i = 0; i < kOrders; ++i) {
    const std::string& pin = PinFor(programme, i);
    const Vaccine& vaccine = chance.OneOf(programme.vaccines);
    const Contract& contract = chance.OneOf(vaccine.contracts);
    const std::string date = chance.Day(2024, 2025);
    const std::string fundingCode = chance.Word(kFundingCodes);
    // Orders of varicella vaccine name the maker that they go to.
    if (!vaccine.active || vaccine.code == "VAR") continue;
    if (!keys.IsNew(pin, date, vaccine.code, fundingCode)) continue;
    const std::int32_t doses = PackageSize(vaccine) * chance.Between(1, 20);
    const std::int32_t passedOn = chance.OneIn(3) ? ++programme.lastPassedOn : 0;
    Statement row;
    if (vaccine.code == "FLU" || vaccine.code == "FLU-PF") {
      row << "INSERT INTO influenza(";
    } else {
      row << "INSERT INTO neworder(";
    }
    row << "ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, fdose1, size, cost, maker, "
        << "contract, ndcno, chgdate, userid, descrip, seekid) VALUES('', '5', '" << pin << "', {"
        << date << "}, '" << vaccine.code << "', " << doses << ", '" << fundingCode << "', "
        << doses << ", " << PackageSize(vaccine) << ", " << contract.cost << ", '" << contract.maker
        << "', '" << contract.number << "', '" << contract.ndcNumber << "', {" << date
        << "}, 'SAMPLE', '" << vaccine.description << "', " << passedOn << ")";
    Add(programme, row);
  }
}

void AddDistributions(Programme& programme) {
  Chance& chance = programme.chance;
  Keys keys;
  constexpr std::int32_t kDistributions = 350;
  for (std::int32_t i = 0; i < kDistributions; ++i) {
    const std::string& pin = PinFor(programme, i);
    const Lot& lot = chance.OneOf(programme.lots);
    const std::string date = chance.Day(2023, 2025);
    const std::int32_t packages = chance.Between(1, 12);
    const std::int32_t doses = PackageSize(*lot.vaccine) * packages;
    // Two of three are distributions, the rest movements of any kind but 9.
    const Action& action = chance.Below(3) < 2 ? kActions.front() : chance.OneOf(kActions);
    if (action.code == 9 || !keys.IsNew(pin, lot.number, date, action.status)) continue;
    Statement row;
    row << "INSERT INTO distrib(input, dateout, frompin, pin, vaccine, lot, doses, units, fdose1, "
        << "action, distid, notes, chgdate, status, shipped, userid) VALUES({" << date << "}, {"
        << date << "}, '" << (action.code == 8 ? std::string("NONE") : lot.depotPin) << "', '"
        << pin << "', '" << lot.vaccine->code << "', '" << lot.number << "', " << doses << ", ";
    if (action.code == 1) {
      row << packages << ", " << doses << ", 1, " << ++programme.lastDistribution << ", '";
    } else {
      row << "0, 0, " << action.code << ", 0, 'Entered from Quorvin front-end.";
    }
    row << "', {" << date << "}, '" << std::string(action.status) << "', "
        << (action.code == 1 ? doses : 0) << ", 'SAMPLE')";
    Add(programme, row);
  }
}

void AddInventories(Programme& programme) {
  Chance& chance = programme.chance;
  constexpr std::int32_t kInventories = 300;
  for (std::int32_t i = 0; i < kInventories; ++i) {
    const std::string& pin = PinFor(programme, i);
    const Vaccine& vaccine = chance.OneOf(programme.vaccines);
    const std::string date = chance.Day(2023, 2025);
    Add(programme,
        Statement() << "INSERT INTO provhas(pin, vaccine, doses, chgdate, idate, provhasid, "
                    << "userid) VALUES('" << pin << "', '" << vaccine.code << "', "
                    << chance.Below(200) << ", {" << date << "}, {" << date << "}, "
                    << ++programme.lastInventory << ", 'SAMPLE')");
  }
}

void AddDosesAdministered(Programme& programme) {
  Chance& chance = programme.chance;
  Keys keys;
  constexpr std::int32_t kReports = 300;
  for (std::int32_t i = 0; i < kReports; ++i) {
    const std::string& pin = PinFor(programme, i);
    const Vaccine& vaccine = chance.OneOf(programme.vaccines);
    const std::int32_t dose = chance.Between(1, vaccine.seriesDoses);
    const std::int32_t sector = chance.Between(1, 2);
    const std::string date = chance.Day(2023, 2025);
    if (!keys.IsNew(pin, date, vaccine.code, std::to_string(dose), std::to_string(sector))) {
      continue;
    }
    Statement row;
    row << "INSERT INTO dosesadm(adate, pin, sector, vaccine, position, dose, g1, g2, g3, g4, g5, "
        << "g6, g7, g8, g9, g10, g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, "
        << "dauzr6, dauzr7, dauzr8, dauzrtot, chgdate, userid, dosesadmid) VALUES({" << date
        << "}, '" << pin << "', " << sector << ", '" << vaccine.code << "', 0, " << dose;
    std::int32_t total = 0;
    for (int group = 1; group <= 13; ++group) {
      const std::int32_t given = chance.OneIn(2) ? chance.Below(25) : 0;
      total += given;
      row << ", " << given;
    }
    const std::int32_t category = chance.Below(6);
    row << ", " << total << ", " << category << ", 0, 0, 0, 0, 0, 0, 0, " << category << ", {"
        << date << "}, 'SAMPLE', " << ++programme.lastReport << ")";
    Add(programme, row);
  }
}

void AddKeyRows(Programme& programme) {
  const auto add = [&](const std::string& table, std::int32_t last) {
    Add(programme, Statement() << "INSERT INTO nextid(ctablename, inextid) VALUES('" << table
                               << "', " << last + 1 << ")");
  };
  add("distrib", programme.lastDistribution);
  add("seekdist", programme.lastPassedOn);
  add("provhas", programme.lastInventory);
  add("Dosesadm", programme.lastReport);
  add("Provider", programme.lastProvider);
}

bool HasRows(Connection& connection, const Statement& count) {
  return ToLong(connection.Execute(count)->Fields().Item(0).Value()) != 0;
}

bool AddUnlessThere(Connection& connection, std::uint32_t seed) {
  if (HasRows(connection, Statement() << "SELECT count(*) FROM provider") ||
      HasRows(connection, Statement() << "SELECT count(*) FROM nextid")) {
    return false;
  }
  Programme programme{.connection = connection, .chance = Chance(seed)};
  AddReferences(programme);
  AddZipCodes(programme);
  programme.vaccines = Vaccines();
  for (Vaccine& vaccine : programme.vaccines) AddVaccine(programme, vaccine);
  AddDepots(programme);
  AddProviders(programme);
  AddLots(programme);
  AddStock(programme);
  AddOrders(programme);
  AddDistributions(programme);
  AddInventories(programme);
  AddDosesAdministered(programme);
  AddKeyRows(programme);
  return true;
}

}  // namespace

bool AddSampleData(Connection& connection, std::uint32_t seed) {
  connection.BeginTrans();
  try {
    const bool added = AddUnlessThere(connection, seed);
    connection.CommitTrans();
    return added;
  } catch (...) {
    try {
      if (connection.InTransaction()) connection.RollbackTrans();
    } catch (...) {
      // The failure that led here is the one to be told.
    }
    throw;
  }
}

}  // namespace lotrix
