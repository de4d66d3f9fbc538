// A client program: a database made, an order written and read back, one refused.
//   consumer FOLDER    where FOLDER is an empty one
#include <lotrix/lotrix.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

void Require(bool holds, const std::string& what) {
  if (holds) return;
  std::cerr << "not so: " << what << '\n';
  std::exit(1);
}

std::int64_t WholeOf(lotrix::cLotrix& service, const std::string& query) {
  const auto rows = service.Connection()->Execute(query);
  return std::get<std::int64_t>(rows->Fields().Item(0).Value());
}

void Use(const std::string& folder) {
  lotrix::cLotrix service({.clock = {}, .notify = {}, .logPath = folder + "/Lotrix.log"});
  service.openConnection("Provider=SQLite;Data Source=" + folder + "/clinic.db");
  service.Connection()->CreateSchema();
  Require(lotrix::AddSampleData(*service.Connection()), "a fresh database takes the sample data");

  const std::string ofDoses = " FROM neworder WHERE pin = 'P00001' AND orddate = {7/4/2026}";
  const std::int64_t before = WholeOf(service, "SELECT count(*)" + ofDoses);
  service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 20, "1", "1", "",
                                                "MKRA");
  Require(WholeOf(service, "SELECT count(*)" + ofDoses) == before + 1, "one order more");
  Require(WholeOf(service, "SELECT orddose" + ofDoses + " AND vaccine = 'DTAP'") == 20,
          "the order is for twenty doses");

  const lotrix::cResultSet lots = service.inventoryOnHandRead("D00001", "DTAP");
  Require(lots.Cols() == 6 && lots.Rows() > 0, "the depot has lots, in six columns");
  Require(lots.GetValue(1, 1) == "DTAP", "the lots are of the vaccine that was asked for");

  try {
    service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 0, "1");
    Require(false, "an order for no doses is refused");
  } catch (const lotrix::Error& error) {
    Require(error.number() == lotrix::kObjectErrorBase + 20025, "refused as error 20025");
    Require(error.source() == "LOTRIX DLL", "the source of a refusal");
  }
  Require(WholeOf(service, "SELECT count(*)" + ofDoses) == before + 1, "nothing more was written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: consumer FOLDER\n";
    return 2;
  }
  Use(argv[1]);
  std::cout << "consumed Lotrix " << lotrix::Version() << '\n';
  return 0;
}
