from collections.abc import Callable, Iterator
from datetime import date, datetime
from os import PathLike
from types import TracebackType
from typing import SupportsIndex, final

from typing_extensions import Self

# What a parameter takes; it is converted to the type that the member is published with.
_Given = str | bool | SupportsIndex | float | date
# What a collection holds and a field has.
_Item = str | bool | int | float | date | Collection | None

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
__version__: str

class Error(Exception):
    def __init__(
        self, number: int, description: str = "", source: str = "Lotrix", engineCode: int = 0
    ) -> None: ...
    @property
    def number(self) -> int: ...
    @property
    def description(self) -> str: ...
    @property
    def source(self) -> str: ...
    @property
    def engineCode(self) -> int: ...

class ArgumentError(Error, TypeError): ...

class Collection:
    def __init__(self) -> None: ...
    @property
    def Count(self) -> int: ...
    def Add(self, Item: _Given | Collection | None, Key: _Given | None = None) -> None: ...
    def Item(self, Index: _Given) -> _Item: ...
    def Remove(self, Index: _Given) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[_Item]: ...
    def __getitem__(self, index: _Given) -> _Item: ...

class cResultSet:
    def __init__(self) -> None: ...
    @property
    def Cols(self) -> int: ...
    @Cols.setter
    def Cols(self, value: _Given) -> None: ...
    @property
    def Rows(self) -> int: ...
    @Rows.setter
    def Rows(self, value: _Given) -> None: ...
    @property
    def Data(self) -> Collection | None: ...
    @Data.setter
    def Data(self, value: Collection | None) -> None: ...
    @property
    def Headers(self) -> Collection | None: ...
    @Headers.setter
    def Headers(self, value: Collection | None) -> None: ...
    @property
    def headers(self) -> list[str]: ...
    def CLEAR(self) -> None: ...
    def SetValue(self, aRow: _Given, aCol: _Given, aValue: _Given) -> None: ...
    def GetValue(self, aRow: _Given, aCol: _Given) -> str: ...
    def AddRow(self, aCollection: Collection | None = None) -> None: ...
    def DeleteRow(self, aRow: _Given) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[tuple[str | None, ...]]: ...

class Connection:
    def __init__(self) -> None: ...
    @property
    def ConnectionString(self) -> str: ...
    @ConnectionString.setter
    def ConnectionString(self, value: _Given) -> None: ...
    @property
    def Mode(self) -> int: ...
    @Mode.setter
    def Mode(self, value: _Given) -> None: ...
    @property
    def State(self) -> int: ...
    @property
    def InTransaction(self) -> bool: ...
    def Open(
        self,
        ConnectionString: _Given | None = "",
        UserID: _Given | None = "",
        Password: _Given | None = "",
        Options: _Given | None = -1,
    ) -> None: ...
    def Close(self) -> None: ...
    def Execute(self, CommandText: _Given) -> Recordset: ...
    def BeginTrans(self) -> None: ...
    def CommitTrans(self) -> None: ...
    def RollbackTrans(self) -> None: ...
    def CreateSchema(self) -> None: ...
    def __enter__(self) -> Self: ...
    def __exit__(
        self,
        kind: type[BaseException] | None,
        raised: BaseException | None,
        traceback: TracebackType | None,
    ) -> None: ...

class Recordset:
    def __init__(self) -> None: ...
    @property
    def State(self) -> int: ...
    @property
    def RecordCount(self) -> int: ...
    @property
    def EOF(self) -> bool: ...
    @property
    def Fields(self) -> Fields: ...
    def Open(
        self,
        Source: _Given,
        ActiveConnection: Connection,
        CursorType: _Given | None = -1,
        LockType: _Given | None = -1,
        Options: _Given | None = -1,
    ) -> None: ...
    def MoveNext(self) -> None: ...
    def Close(self) -> None: ...

@final
class Fields:
    @property
    def Count(self) -> int: ...
    def Item(self, Index: _Given) -> Field: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Field]: ...
    def __getitem__(self, index: _Given) -> Field: ...

@final
class Field:
    @property
    def Name(self) -> str: ...
    @property
    def Type(self) -> int: ...
    @property
    def Value(self) -> str | bool | int | float | date | None: ...

class cLotrix:
    def __init__(
        self,
        connection_string: _Given | None = None,
        log_path: str | bytes | PathLike[str] | PathLike[bytes] | None = None,
        notify: Callable[[str], object] | None = None,
        clock: Callable[[], datetime] | None = None,
    ) -> None: ...
    def __enter__(self) -> Self: ...
    def __exit__(
        self,
        kind: type[BaseException] | None,
        raised: BaseException | None,
        traceback: TracebackType | None,
    ) -> None: ...
    @property
    def Connection(self) -> Connection: ...
    def openConnection(self, aConnectionString: _Given) -> None: ...
    def closeConnection(self) -> None: ...
    def manufacturerProviderOrderRead(
        self,
        aPIN: _Given,
        aShipmentBeginDate: _Given,
        aVaccine: _Given | None = "",
        aLotNumber: _Given | None = "",
        aShipmentEndDate: _Given | None = "",
    ) -> cResultSet: ...
    def stockTableRead(
        self,
        aPIN: _Given | None = "",
        aVaccine: _Given | None = "",
        aLotNumber: _Given | None = "",
        aShipmentBeginDate: _Given | None = "",
        aShipmentEndDate: _Given | None = "",
    ) -> cResultSet: ...
    def vaccineReferenceTableRead(self) -> cResultSet: ...
    def inventoryOnHandRead(
        self,
        aDepotPIN: _Given,
        aVaccine: _Given | None = "",
    ) -> cResultSet: ...
    def manufacturerProviderOrderCreateUpdate(
        self,
        anOrderDate: _Given,
        aPIN: _Given,
        aVaccine: _Given,
        aDoseCount: _Given,
        aFundingSource: _Given,
        anExcessAllowance: _Given | None = "1",
        aStatePO: _Given | None = "",
        aMfg: _Given | None = "",
    ) -> None: ...
    def providerProfileUpdate(
        self,
        aPIN: _Given,
        aFacilityLastName: _Given,
        aShippingContact: _Given,
        aShippingAddress1: _Given,
        aShippingAddress2: _Given,
        aShippingCity: _Given,
        aShippingState: _Given,
        aShippingZipCode: _Given,
        aShippingInstructions: _Given,
        aShippingPhoneNumber: _Given,
        aShippingFaxNumber: _Given,
        aMailContact: _Given,
        aMailAddress1: _Given,
        aMailAddress2: _Given,
        aMailCity: _Given,
        aMailState: _Given,
        aMailZipCode: _Given,
        aMailPhoneNumber: _Given,
        aMailFaxNumber: _Given,
        aVaricellaEligibilityStatus: _Given,
        aClassificationCode: _Given | None = None,
        aVFCCertificationDate: _Given | None = None,
        aPhoneExtension: _Given | None = None,
        aFirstName: _Given | None = None,
        aMiddleInitial: _Given | None = None,
        aTitle: _Given | None = None,
        aParentProviderID: _Given | None = None,
        anAdditionalID: _Given | None = None,
        anActiveStatus: _Given | None = None,
        aSubdivision: _Given | None = None,
        aCategory1: _Given | None = None,
        aCategory2: _Given | None = None,
        aCategory3: _Given | None = None,
    ) -> None: ...
    def providerInventoryAdjustmentUpdate(
        self,
        aDepotPIN: _Given,
        anEntryDate: _Given,
        aTransactionDate: _Given,
        aTransactionType: _Given,
        aPIN: _Given,
        aVaccine: _Given,
        aLotNumber: _Given,
        aDoseCount: _Given,
    ) -> None: ...
    def providerShippingDataUpdate(
        self,
        aPIN: _Given,
        aFacilityLastName: _Given,
        aShippingContact: _Given,
        aShippingAddress1: _Given,
        aShippingAddress2: _Given,
        aShippingCity: _Given,
        aShippingState: _Given,
        aShippingZipCode: _Given,
        aShippingInstructions: _Given,
        aPhoneNumber: _Given,
        aFaxNumber: _Given,
        aPhoneExtension: _Given | None = None,
        aFirstName: _Given | None = None,
        aMiddleInitial: _Given | None = None,
        aTitle: _Given | None = None,
    ) -> None: ...
    def DosesAdministeredUpdate(
        self,
        aReportingDate: _Given,
        aPIN: _Given,
        aVaccine: _Given,
        aDoseInSeries: _Given,
        aSector: _Given | None = "1",
        aDoseCountLessThanOne: _Given | None = 0,
        aDoseCountForOneYear: _Given | None = 0,
        aDoseCountForTwoYears: _Given | None = 0,
        aDoseCountForThreetoFourYears: _Given | None = 0,
        aDoseCountForFiveYears: _Given | None = 0,
        aDoseCountForSixtoNineYears: _Given | None = 0,
        aDoseCountForTentoFourteenYears: _Given | None = 0,
        aDoseCountForFifteentoNineteenYears: _Given | None = 0,
        aDoseCountForTwentytoTwentyFourYears: _Given | None = 0,
        aDoseCountForTwentyFivetoFourtyFourYears: _Given | None = 0,
        aDoseCountForFourtyFivetoSixtyFourYears: _Given | None = 0,
        aDoseCountForGreaterThanSixtyFiveYears: _Given | None = 0,
        anUnknown: _Given | None = 0,
        aTotalDoses: _Given | None = 0,
        aUserDefinedCategory1: _Given | None = 0,
        aUserDefinedCategory2: _Given | None = 0,
        aUserDefinedCategory3: _Given | None = 0,
    ) -> None: ...
    def DepotProviderOrderUpdate(
        self,
        aShipmentDate: _Given,
        aDepotID: _Given,
        aPIN: _Given,
        aVaccine: _Given,
        aDoseCount: _Given,
        aLotNumber: _Given,
        anExcessAllow: _Given | None = "1",
        anOrderDate: _Given | None = "",
    ) -> None: ...
    def providerEnrollmentAddUpdate(
        self,
        aPIN: _Given,
        aSource: _Given,
        aAgeGroup: _Given,
        aAll: _Given,
        aMedicaid: _Given,
        aUninsured: _Given,
        aAmIndian: _Given,
        aFQHC_RHC: _Given,
        aVFC: _Given,
        aG317: _Given,
        aState: _Given,
    ) -> None: ...
    def providerAdditionalInfoUpdate(
        self,
        aPIN: _Given,
        aProviderType: _Given,
        aClassification: _Given,
        aCurrentVFCCert: _Given,
        aCohort: _Given,
        aEmpIdNum: _Given,
        aQuorvin: _Given,
    ) -> None: ...
    def physicianAddUpdate(
        self,
        aPIN: _Given,
        aLastName: _Given,
        aFirstName: _Given,
        aMiddleInitial: _Given,
        aTitle: _Given,
        aSiteMedID: _Given,
        aMedicaidNum: _Given,
        aLicenseNum: _Given,
    ) -> None: ...
    def provinvAdd(self, aPIN: _Given, aVacc: _Given, aInv: _Given, aIdate: _Given) -> None: ...
    def physicianDeleteByPin(self, aPIN: _Given) -> None: ...
    def CheckVaccActive(self, aVaccine: _Given) -> None: ...

def AddSampleData(connection: Connection, seed: _Given | None = 1) -> bool: ...
def Engines() -> list[str]: ...
