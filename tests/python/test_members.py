"""The members of cLotrix: names, arguments, defaults, and what is checked in which order."""

import inspect
import json
import os
import subprocess

import pytest

import lotrix

COUNTS = [
    "aDoseCountLessThanOne", "aDoseCountForOneYear", "aDoseCountForTwoYears",
    "aDoseCountForThreetoFourYears", "aDoseCountForFiveYears", "aDoseCountForSixtoNineYears",
    "aDoseCountForTentoFourteenYears", "aDoseCountForFifteentoNineteenYears",
    "aDoseCountForTwentytoTwentyFourYears", "aDoseCountForTwentyFivetoFourtyFourYears",
    "aDoseCountForFourtyFivetoSixtyFourYears", "aDoseCountForGreaterThanSixtyFiveYears",
    "anUnknown", "aTotalDoses", "aUserDefinedCategory1", "aUserDefinedCategory2",
    "aUserDefinedCategory3",
]

SIGNATURES = {
    "openConnection": "(aConnectionString)",
    "closeConnection": "()",
    "manufacturerProviderOrderRead":
        "(aPIN, aShipmentBeginDate, aVaccine='', aLotNumber='', aShipmentEndDate='')",
    "stockTableRead":
        "(aPIN='', aVaccine='', aLotNumber='', aShipmentBeginDate='', aShipmentEndDate='')",
    "vaccineReferenceTableRead": "()",
    "inventoryOnHandRead": "(aDepotPIN, aVaccine='')",
    "manufacturerProviderOrderCreateUpdate":
        "(anOrderDate, aPIN, aVaccine, aDoseCount, aFundingSource, anExcessAllowance='1', "
        "aStatePO='', aMfg='')",
    "providerProfileUpdate":
        "(aPIN, aFacilityLastName, aShippingContact, aShippingAddress1, aShippingAddress2, "
        "aShippingCity, aShippingState, aShippingZipCode, aShippingInstructions, "
        "aShippingPhoneNumber, aShippingFaxNumber, aMailContact, aMailAddress1, aMailAddress2, "
        "aMailCity, aMailState, aMailZipCode, aMailPhoneNumber, aMailFaxNumber, "
        "aVaricellaEligibilityStatus, aClassificationCode=None, aVFCCertificationDate=None, "
        "aPhoneExtension=None, aFirstName=None, aMiddleInitial=None, aTitle=None, "
        "aParentProviderID=None, anAdditionalID=None, anActiveStatus=None, aSubdivision=None, "
        "aCategory1=None, aCategory2=None, aCategory3=None)",
    "providerInventoryAdjustmentUpdate":
        "(aDepotPIN, anEntryDate, aTransactionDate, aTransactionType, aPIN, aVaccine, "
        "aLotNumber, aDoseCount)",
    "providerShippingDataUpdate":
        "(aPIN, aFacilityLastName, aShippingContact, aShippingAddress1, aShippingAddress2, "
        "aShippingCity, aShippingState, aShippingZipCode, aShippingInstructions, aPhoneNumber, "
        "aFaxNumber, aPhoneExtension=None, aFirstName=None, aMiddleInitial=None, aTitle=None)",
    "DosesAdministeredUpdate":
        "(aReportingDate, aPIN, aVaccine, aDoseInSeries, aSector='1', "
        + ", ".join(f"{count}=0" for count in COUNTS) + ")",
    "DepotProviderOrderUpdate":
        "(aShipmentDate, aDepotID, aPIN, aVaccine, aDoseCount, aLotNumber, anExcessAllow='1', "
        "anOrderDate='')",
    "providerEnrollmentAddUpdate":
        "(aPIN, aSource, aAgeGroup, aAll, aMedicaid, aUninsured, aAmIndian, aFQHC_RHC, aVFC, "
        "aG317, aState)",
    "providerAdditionalInfoUpdate":
        "(aPIN, aProviderType, aClassification, aCurrentVFCCert, aCohort, aEmpIdNum, aQuorvin)",
    "physicianAddUpdate":
        "(aPIN, aLastName, aFirstName, aMiddleInitial, aTitle, aSiteMedID, aMedicaidNum, "
        "aLicenseNum)",
    "provinvAdd": "(aPIN, aVacc, aInv, aIdate)",
    "physicianDeleteByPin": "(aPIN)",
    "CheckVaccActive": "(aVaccine)",
}

ORDER = dict(anOrderDate="7/4/2026", aPIN="P00001", aVaccine="DTAP", aDoseCount=20,
             aFundingSource="1", aMfg="MKRA")
TODAYS_ORDER = ("SELECT orddose, fdose1, fcode1 FROM neworder WHERE pin = 'P00001' "
                "AND vaccine = 'DTAP' AND orddate = '2026-07-04'")


@pytest.mark.parametrize("name", SIGNATURES)
def test_every_method_shows_its_names_and_defaults(service, name):
    assert str(inspect.signature(getattr(service, name))) == SIGNATURES[name]
    unbound = str(inspect.signature(getattr(lotrix.cLotrix, name)))
    assert unbound == SIGNATURES[name].replace("(", "(self, ", 1).replace(", )", ")")


def test_the_class_has_the_published_members_and_no_others():
    shown = subprocess.run([os.environ["LOTRIX_COMMAND"], "operations", "--json"],
                           check=True, capture_output=True, timeout=60)
    published = [member["name"] for member in json.loads(shown.stdout)]
    assert sorted(published) == sorted([*SIGNATURES, "Connection"])
    public = [name for name in vars(lotrix.cLotrix) if not name.startswith("_")]
    assert public == published


def test_a_member_tells_what_it_takes_and_returns():
    about = lotrix.cLotrix.inventoryOnHandRead.__doc__
    assert about.startswith("Returns a cResultSet.")
    assert "aDepotPIN: String" in about
    assert "aVaccine: String, may be omitted" in about
    assert lotrix.cLotrix.CheckVaccActive.__doc__.startswith("Returns None.")
    assert lotrix.cLotrix.inventoryOnHandRead.__name__ == "inventoryOnHandRead"


def test_the_constructor_shows_its_names():
    assert str(inspect.signature(lotrix.cLotrix)) == (
        "(connection_string=None, log_path=None, notify=None, clock=None)")


def test_arguments_by_name_reach_their_parameters(service, database):
    assert service.manufacturerProviderOrderCreateUpdate(**ORDER) is None
    assert database.query(TODAYS_ORDER) == [(20, 20, "1")]


def test_arguments_in_order_reach_their_parameters(service, database):
    service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 20, "1", "1", "",
                                                  "MKRA")
    assert database.query(TODAYS_ORDER) == [(20, 20, "1")]


def test_both_ways_in_one_call(service, database):
    service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", aMfg="MKRA",
                                                  aVaccine="DTAP", aFundingSource="1",
                                                  aDoseCount=20)
    assert database.query(TODAYS_ORDER) == [(20, 20, "1")]


def test_names_count_without_regard_to_case(service, database):
    service.manufacturerProviderOrderCreateUpdate(
        **{name.upper(): value for name, value in ORDER.items()})
    assert database.query(TODAYS_ORDER) == [(20, 20, "1")]


def doses(service, **optional):
    service.DosesAdministeredUpdate("7/4/2026", "P00001", "DTAP", "1", aDoseCountForOneYear=3,
                                    aTotalDoses=3, **optional)


SECTOR = "SELECT sector FROM dosesadm WHERE adate = '2026-07-04' AND userid = 'LTX_DLL'"


def test_none_is_an_omitted_argument(service, database):
    doses(service, aSector=None)
    assert database.query(SECTOR) == [(1,)]


def test_an_empty_text_is_no_omitted_argument(service, database):
    with pytest.raises(lotrix.Error) as refused:
        doses(service, aSector="")
    assert refused.value.number == -2147221504 + 20085
    assert database.query(SECTOR) == []


def test_omitted_counts_pass_zero_and_an_omitted_sector_one(service, database):
    doses(service)
    columns = ["sector", *(f"g{n}" for n in range(1, 14)), "rowtot", "dauzr1", "dauzr2", "dauzr3"]
    rows = database.query(f"SELECT {', '.join(columns)} FROM dosesadm "
                          "WHERE pin = 'P00001' AND adate = '2026-07-04' AND userid = 'LTX_DLL'")
    assert rows == [(1, 0, 3, *[0] * 11, 3, 0, 0, 0)]


def test_an_omitted_variant_is_not_written(service, database):
    values = dict(aPIN="P00001", aFacilityLastName="Clinic", aShippingContact="Orla",
                  aShippingAddress1="3 Lantern St.", aShippingAddress2="", aShippingCity="Amber",
                  aShippingState="ZZ", aShippingZipCode="69401", aShippingInstructions="",
                  aPhoneNumber="(217) 555-0101", aFaxNumber="")
    service.providerShippingDataUpdate(**values, aTitle="Ms", aFirstName="Ann")
    service.providerShippingDataUpdate(**values, aTitle=None, aFirstName="")
    assert database.query("SELECT title, firstname FROM provider WHERE pin = 'P00001'") == [
        ("MS", "")]


def refusal(call):
    with pytest.raises(lotrix.ArgumentError) as refused:
        call()
    error = refused.value
    assert isinstance(error, lotrix.Error) and isinstance(error, TypeError)
    return error.number, error.description, error.source


def test_an_unknown_name(service):
    assert refusal(lambda: service.inventoryOnHandRead(aPIN="D00001")) == (
        448, "Named argument not found", "Lotrix")


@pytest.mark.parametrize("given", [{}, {"aDepotPIN": None}])
def test_a_required_argument_omitted(service, given):
    assert refusal(lambda: service.inventoryOnHandRead(**given)) == (
        449, "Argument not optional", "Lotrix")


def test_too_many_arguments(service):
    assert refusal(lambda: service.inventoryOnHandRead("D00001", "DTAP", None)) == (
        450, "Wrong number of arguments or invalid property assignment", "Lotrix")


@pytest.mark.parametrize("call", [
    lambda service: service.inventoryOnHandRead("D00001", aDepotPIN="D00001"),
    lambda service: service.inventoryOnHandRead(aDepotPIN="D00001", adepotpin=None),
])
def test_an_argument_given_twice(service, call):
    with pytest.raises(lotrix.Error) as refused:
        call(service)
    assert refused.value.number == 5


def test_names_are_looked_at_before_omissions_and_both_before_values(service):
    assert refusal(lambda: service.inventoryOnHandRead(None, nosuch=1))[0] == 448
    assert refusal(lambda: service.provinvAdd(aPIN=object(), aVacc=2**70))[0] == 449


def test_what_is_refused_before_the_member_runs_is_not_logged(service, log):
    before = log.lines()
    for arguments in [{}, {"nosuch": 1}, {"aDepotPIN": object()}]:
        with pytest.raises(lotrix.Error):
            service.inventoryOnHandRead(**arguments)
    assert log.lines() == before


def test_a_member_that_is_not_published(service):
    with pytest.raises(AttributeError):
        service.GetNextID


def test_no_error_shows_a_value():
    secret = "Provider=SQLite;Password=hidden"
    for call in [
        lambda: lotrix.cLotrix(secret, None, None, None, None),
        lambda: lotrix.cLotrix(conection_string=secret),
        lambda: lotrix.cLotrix.openConnection(secret),
        lambda: lotrix.cLotrix.openConnection(aConnectionString=secret),
        lambda: lotrix.Connection(secret),
        lambda: lotrix.Connection.Open(secret),
        lambda: lotrix.Connection().Open(Password=secret, nosuch=1),
        lambda: lotrix.Connection().Open(secret),
    ]:
        with pytest.raises((lotrix.Error, TypeError)) as refused:
            call()
        assert "hidden" not in f"{refused.value!r} {refused.value}"
