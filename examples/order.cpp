// An order placed through the service object, and what a refusal tells.
//   order FILE    where FILE is a database made by "lotrix init --sample"
#include <iostream>

#include "lotrix/lotrix.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: order FILE\n";
    return 2;
  }
  lotrix::cLotrix service;
  service.openConnection(std::string("Provider=SQLite;Data Source=") + argv[1]);

  try {
    service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 20, "1", "1", "",
                                                  "MKRA");
    std::cout << "ordered\n";
    // An order for no doses breaks a rule; nothing of it is written.
    service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 0, "1");
  } catch (const lotrix::Error& error) {
    std::cout << "refused: " << error.number() << ' ' << error.source() << ": "
              << error.description() << '\n';
  }

  const lotrix::cResultSet lots = service.inventoryOnHandRead("D00001", "DTAP");
  for (std::int32_t row = 1; row <= lots.Rows(); ++row) {
    std::cout << lots.GetValue(row, 2) << " expires " << lots.GetValue(row, 3) << ", "
              << lots.GetValue(row, 5) << " left\n";
  }
  return 0;
}
