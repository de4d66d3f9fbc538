#include "bench/operations.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>

#include "src/database/statement.h"
#include "src/platform/dates.h"

namespace lotrix::bench {

std::string PinOf(int provider) {
  std::array<char, 16> pin{};
  std::snprintf(pin.data(), pin.size(), "B%05X", static_cast<unsigned>(provider));
  return pin.data();
}

std::string DateOf(int variant) {
  return DateText({.year = static_cast<std::int16_t>(2008 + variant / 336 % 20),
                   .month = static_cast<std::uint8_t>(variant % 12 + 1),
                   .day = static_cast<std::uint8_t>(variant / 12 % 28 + 1)});
}

void AddRows(Connection& connection, int providers) {
  AddSampleData(connection);
  connection.BeginTrans();
  static_cast<void>(connection.Execute(
      "INSERT INTO pvaccref VALUES('DTAP', 'BENCHM', {1/1/2004}, {12/31/2030}, 1, 1, 10, 'N', "
      "12.5, 'C', 'S', 'D', 'E', 'BENCH', .F., 5)"));
  for (int i = 0; i < providers; ++i) {
    static_cast<void>(connection.Execute(
        Statement() << "INSERT INTO provider(pin, lastname, city, state, sector, active) VALUES('"
                    << PinOf(i) << "', 'BENCH CLINIC', 'SPRINGFIELD', 'IL', 10, 'Y')"));
  }
  static_cast<void>(connection.Execute(
      "INSERT INTO stock(pin, lot, vaccine, tracking) VALUES('B00000', 'BENCH1', 'DTAP', 'T')"));
  // What the depot has shipped on one day is added to.
  static_cast<void>(
      connection.Execute("INSERT INTO distrib(dateout, frompin, pin, vaccine, lot, doses, action) "
                         "VALUES({7/5/2012}, 'D00001', 'B00008', 'DTAP', 'BENCH1', 1, 1)"));
  connection.CommitTrans();
}

void Order(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.manufacturerProviderOrderCreateUpdate(date, pin, "DTAP", doses, "1", "1", "", "BENCHM");
}

namespace {

std::string Numbered(std::string text, int number) { return text += std::to_string(number); }

void Adjust(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.providerInventoryAdjustmentUpdate("D00001", date, date, "Lo", pin, "DTAP", "BENCH-1",
                                            doses);
}

void Dose(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.DosesAdministeredUpdate(date, pin, "DTAP", "1", "1", doses, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                  1, 1, doses + 12, 1, 2, 3);
}

void Profile(cLotrix& service, const std::string& pin, const std::string& contact) {
  service.providerProfileUpdate(pin, "Bench Clinic", contact, "1 Lantern St.", "", "Amberbrook",
                                "ZZ", "69401", "Ring twice", "(217) 555-0100", "", "", "", "", "",
                                "", "", "", "", true, "10", {}, "17", "Orla", "B", "MD");
}

void Physician(cLotrix& service, const std::string& lastName, const std::string& license) {
  service.physicianAddUpdate("B00009", lastName, "Orla", "B", "MD", "S-1", "M-1", license);
}

}  // namespace

std::vector<Operation> Operations() {
  const auto keep = [](auto&& table) { benchmark::DoNotOptimize(table); };
  return {
      {"stockTableRead", true, 50,
       [=](cLotrix& s, int v) { keep(s.stockTableRead("", "DTAP", "", DateOf(v))); }},
      {"manufacturerProviderOrderRead", true, 50,
       [=](cLotrix& s, int v) {
         keep(s.manufacturerProviderOrderRead(PinOf(v), "1/1/2008", "DTAP", "", "12/31/2027"));
       }},
      {"vaccineReferenceTableRead", true, 1,
       [=](cLotrix& s, int) { keep(s.vaccineReferenceTableRead()); }},
      {"inventoryOnHandRead", true, 2,
       [=](cLotrix& s, int v) { keep(s.inventoryOnHandRead("D00001", v == 0 ? "DTAP" : "MMR")); }},
      {"CheckVaccActive", false, 1, [](cLotrix& s, int) { s.CheckVaccActive("DTAP"); }},
      {"manufacturer order: insert", false, kCalls,
       [](cLotrix& s, int v) { Order(s, DateOf(v), PinOf(v % 1000), 10); }},
      {"manufacturer order: update", false, 2,
       [](cLotrix& s, int v) { Order(s, "7/4/2012", PinOf(7), 10 + v); }},
      {"depot order: insert", false, kCalls,
       [](cLotrix& s, int v) {
         s.DepotProviderOrderUpdate("7/4/2012", "D00001", PinOf(v % 1000), "DTAP", 10, "BENCH-1");
       }},
      {"depot order: update", false, 2,
       [](cLotrix& s, int v) {
         s.DepotProviderOrderUpdate("7/5/2012", "D00001", PinOf(8), "DTAP", 1 + v, "BENCH-1");
       }},
      {"adjustment: insert", false, kCalls,
       [](cLotrix& s, int v) { Adjust(s, DateOf(v), PinOf(v % 1000), 2); }},
      {"adjustment: update", false, 2,
       [](cLotrix& s, int v) { Adjust(s, "7/4/2012", PinOf(7), 2 + v); }},
      {"provinvAdd", false, kCalls,
       [](cLotrix& s, int v) { s.provinvAdd(PinOf(v % 1000), "DTAP", "48", DateOf(v)); }},
      {"doses administered: insert", false, kCalls,
       [](cLotrix& s, int v) { Dose(s, DateOf(v), PinOf(v % 1000), 5); }},
      {"doses administered: update", false, 2,
       [](cLotrix& s, int v) { Dose(s, "7/4/2012", PinOf(7), 5 + v); }},
      {"profile: insert", false, kCalls,
       [](cLotrix& s, int v) { Profile(s, Numbered("X", 10000 + v), "Orla"); }},
      {"profile: update", false, kCalls,
       [](cLotrix& s, int v) { Profile(s, PinOf(9), Numbered("Orla ", v)); }},
      {"shipping data", false, 2,
       [](cLotrix& s, int v) {
         s.providerShippingDataUpdate(PinOf(10), "Bench Clinic", v == 0 ? "Orla" : "Benno",
                                      "1 Lantern St.", "", "Amberbrook", "ZZ", "69401", "",
                                      "(217) 555-0100", "");
       }},
      {"enrollment", false, 2,
       [](cLotrix& s, int v) {
         s.providerEnrollmentAddUpdate("P00001", "A", "2", v == 0 ? "100" : "101", "1", "2", "3",
                                       "4", "5", "6", "7");
       }},
      {"additional info", false, 2,
       [](cLotrix& s, int v) {
         s.providerAdditionalInfoUpdate(PinOf(11), v == 0 ? "CLINIC" : "SCHOOL", "11", "1/5/2026",
                                        "C1", "E-100", "YES");
       }},
      {"physician: insert", false, kCalls,
       [](cLotrix& s, int v) { Physician(s, Numbered("Thistle", v), "L-1"); }},
      {"physician: update", false, 2,
       [](cLotrix& s, int v) { Physician(s, "Linnet", v == 0 ? "L-1" : "L-2"); }},
      {"physicianDeleteByPin", false, 50,
       [](cLotrix& s, int v) { s.physicianDeleteByPin(PinOf(v + 20)); }},
  };
}

}  // namespace lotrix::bench
