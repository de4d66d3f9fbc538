#!/usr/bin/python3
"""A working day in Python, on a sample database.

    PYTHONPATH=build/python examples/working_day.py [FILE]

FILE is made with the sample data when it is new; without one a temporary database is used.
The parts stand by themselves, so they can be pasted into the cells of a notebook.
"""

import csv
import datetime
import io
import pathlib
import sys
import tempfile

import lotrix

# %% A database with the sample data of a small state's programme.
folder = tempfile.TemporaryDirectory()
file = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else f"{folder.name}/day.db")
connection_string = f'Provider=SQLite;Data Source="{file}"'
with lotrix.Connection() as connection:
    connection.Open(connection_string)
    connection.CreateSchema()
    lotrix.AddSampleData(connection)

# %% The door to it. Its trace stands beside the database.
service = lotrix.cLotrix(connection_string, log_path=file.with_suffix(".log"), notify=print)
today = datetime.date.today()

# %% What does the depot hold? A result iterates as rows and has headers.
lots = service.inventoryOnHandRead("D00001", aVaccine="DTAP")
print(*lots.headers)
for row in lots:
    print(*row)
# The same as a table of pandas:
#     pandas.DataFrame(lots, columns=lots.headers)

# %% Is the vaccine active? The answer is shown by notify.
service.CheckVaccActive("DTAP")

# %% A provider orders from the manufacturer; optional arguments may be left out.
service.manufacturerProviderOrderCreateUpdate(
    anOrderDate=today, aPIN="P00001", aVaccine="DTAP", aDoseCount=20, aFundingSource="1",
    aMfg="MKRA")
print("ordered 20 doses")

# %% What a rule refuses is an exception, with the number that programs rely on.
try:
    service.manufacturerProviderOrderCreateUpdate(
        anOrderDate=today, aPIN="P00001", aVaccine="DTAP", aDoseCount=0, aFundingSource="1")
except lotrix.Error as error:
    print("refused:", error)

# %% A clinic's counted stock arrives as a CSV file; one row is wrong.
counted = io.StringIO("""\
aPIN,aVacc,aInv
P00001,DTAP,48
P00001,MMR,twelve
P00002,HIB,9
""")
accepted = 0
for count in csv.DictReader(counted):
    try:
        service.provinvAdd(**count, aIdate=today)
        accepted += 1
    except lotrix.Error as error:
        print(f"{count['aPIN']} {count['aVacc']}: {error}")
print(f"{accepted} counts accepted")

# %% The day as the database holds it.
rows = service.Connection.Execute(
    "SELECT pin, vaccine, doses, idate FROM provhas WHERE userid = 'LTX_DLL' ORDER BY pin")
while not rows.EOF:
    print(*(field.Value for field in rows.Fields))
    rows.MoveNext()

# %% At the end of the day. A with block does it by itself.
service.closeConnection()
