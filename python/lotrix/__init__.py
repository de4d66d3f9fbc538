"""A checked door into the database of a vaccine-management system.

    with lotrix.cLotrix("Provider=SQLite;Data Source=lotrix.db") as service:
        lots = service.inventoryOnHandRead("D00001", aVaccine="DTAP")
        for row in lots:
            print(row)
"""

from lotrix._errors import ArgumentError, Error
from lotrix._native import (
    AddSampleData,
    Collection,
    Connection,
    Engines,
    Field,
    Fields,
    Recordset,
    __version__,
    cLotrix,
    cResultSet,
)

__all__ = [
    "AddSampleData",
    "ArgumentError",
    "Collection",
    "Connection",
    "Engines",
    "Error",
    "Field",
    "Fields",
    "Recordset",
    "__version__",
    "cLotrix",
    "cResultSet",
]
