// Provider profiles, shipping data, enrollment, additional information and
// physicians.
#include <array>
#include <optional>

#include "lotrix/component.h"
#include "src/database/service.h"
#include "src/errors/raise_error.h"
#include "src/operations/default_enrollment.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/platform/values.h"
#include "src/utility/keys_and_lookups.h"
#include "src/utility/sql_text.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

using OptionalText = std::optional<std::string>;

OptionalText UpperIfPresent(const Variant& argument) {
  if (argument.IsMissing()) return std::nullopt;
  return UpperCase(ToText(argument.value()));
}

std::string CleanedUpper(const Text& text) { return UpperCase(RemoveSpecialCharacters(text)); }

// "name = 'value', " for a value that is there; `opening` is the name with the
// apostrophe.
void AssignIfPresent(Statement& statement, SqlText opening, const OptionalText& value) {
  if (value) statement << opening << *value << "', ";
}

// Whether the classification is one of a provider is asked the same way for new
// and old ones.
std::int32_t RequireClassification(Service& service, const Variant& aClassificationCode) {
  const std::int32_t classification = ToLong(aClassificationCode.value());
  if (!ValidateSector(service.log, classification, service.ReadConnection())) {
    RaiseError(kInvalidClassificationCode);
  }
  return classification;
}

void RequireLength(std::string_view value, std::size_t most, const Message& message,
                   std::string_view label) {
  if (Utf16Length(TrimBlanks(value)) <= most) return;
  RaiseError(message.code, std::string(message.text) + std::string(label));
}

}  // namespace

void cLotrix::providerProfileUpdate(
    const Text& aPIN, const Text& aFacilityLastName, const Text& aShippingContact,
    const Text& aShippingAddress1, const Text& aShippingAddress2, const Text& aShippingCity,
    const Text& aShippingState, const Text& aShippingZipCode, const Text& aShippingInstructions,
    const Text& aShippingPhoneNumber, const Text& aShippingFaxNumber, const Text& aMailContact,
    const Text& aMailAddress1, const Text& aMailAddress2, const Text& aMailCity,
    const Text& aMailState, const Text& aMailZipCode, const Text& aMailPhoneNumber,
    const Text& aMailFaxNumber, bool aVaricellaEligibilityStatus,
    const Variant& aClassificationCode, const Variant& aVFCCertificationDate,
    const Variant& aPhoneExtension, const Variant& aFirstName, const Variant& aMiddleInitial,
    const Variant& aTitle, const Variant& aParentProviderID, const Variant& anAdditionalID,
    const Variant& anActiveStatus, const Variant& aSubdivision, const Variant& aCategory1,
    const Variant& aCategory2, const Variant& aCategory3) {
  Service& service = *service_;
  InFrame(service.log, {"providerProfileUpdate"}, [&] {
    const std::string today = DateText(Today(service.clock));

    const std::string pin = UpperCase(aPIN);
    const std::string facilityName = UpperCase(aFacilityLastName);
    const std::string shippingContact = UpperCase(aShippingContact);
    const std::string shippingPhone = UpperCase(aShippingPhoneNumber);
    const std::string shippingFax = UpperCase(aShippingFaxNumber);
    const std::string mailContact = UpperCase(aMailContact);
    const std::string mailPhone = UpperCase(aMailPhoneNumber);
    const std::string mailFax = UpperCase(aMailFaxNumber);
    const std::string shippingAddress1 = CleanedUpper(aShippingAddress1);
    const std::string shippingAddress2 = CleanedUpper(aShippingAddress2);
    const std::string shippingCity = CleanedUpper(aShippingCity);
    const std::string shippingState = CleanedUpper(aShippingState);
    const std::string shippingZipCode = CleanedUpper(aShippingZipCode);
    std::string instructions = CleanedUpper(aShippingInstructions);
    const std::string mailAddress1 = CleanedUpper(aMailAddress1);
    const std::string mailAddress2 = CleanedUpper(aMailAddress2);
    const std::string mailCity = CleanedUpper(aMailCity);
    const std::string mailState = CleanedUpper(aMailState);
    const std::string mailZipCode = CleanedUpper(aMailZipCode);

    const OptionalText certificationDate = UpperIfPresent(aVFCCertificationDate);
    const OptionalText extension = UpperIfPresent(aPhoneExtension);
    const OptionalText firstName = UpperIfPresent(aFirstName);
    const OptionalText middleInitial = UpperIfPresent(aMiddleInitial);
    const OptionalText title = UpperIfPresent(aTitle);
    const OptionalText parentProvider = UpperIfPresent(aParentProviderID);
    const OptionalText additionalId = UpperIfPresent(anAdditionalID);
    // A missing flag counts as given: every call writes it.
    const std::string active = UpperIfPresent(anActiveStatus).value_or("Y");
    if (active != "Y" && active != "N") RaiseError(kInvalidActiveCode);
    const OptionalText subdivision = UpperIfPresent(aSubdivision);
    const OptionalText category1 = UpperIfPresent(aCategory1);
    const OptionalText category2 = UpperIfPresent(aCategory2);
    const OptionalText category3 = UpperIfPresent(aCategory3);

    const bool exists = ValidateProviderPIN(service.log, pin, true, service.ReadConnection());
    if (IsBlank(facilityName)) RaiseError(kNullProviderName);
    if (IsBlank(shippingContact)) RaiseError(kNullShippingContact);
    ValidateShippingAddress(service.log, shippingAddress1, shippingAddress2, shippingCity,
                            shippingZipCode, shippingState, service.ReadConnection());
    if (IsBlank(instructions)) instructions = "NONE";
    if (!ValidatePhoneFaxFormat(service.log, shippingPhone)) {
      RaiseError(kInvalidShippingPhoneNumber);
    }
    if (!IsBlank(shippingFax) && !ValidatePhoneFaxFormat(service.log, shippingFax)) {
      RaiseError(kInvalidShippingFaxNumber);
    }
    if (!IsBlank(mailPhone) && !ValidatePhoneFaxFormat(service.log, mailPhone)) {
      RaiseError(kInvalidMailingPhoneNumber);
    }
    if (!IsBlank(mailFax) && !ValidatePhoneFaxFormat(service.log, mailFax)) {
      RaiseError(kInvalidMailingFaxNumber);
    }
    const std::string codes = aVaricellaEligibilityStatus ? "V" : "";
    const std::string county = GetCountyName(service, shippingZipCode);
    // Taken before it is known whether a provider is added.
    const std::int32_t newId = GetNextID(service, "Provider");

    if (!exists) {
      if (aClassificationCode.IsMissing()) RaiseError(kClassificationCodeNeeded);
      const std::int32_t classification = RequireClassification(service, aClassificationCode);
      ValidateNewProviderPIN(service.log, pin);

      Statement statement;
      statement << "INSERT INTO provider(pin, contact, lastname, address, addres2, city, state, "
                << "zipcode, ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, "
                << "note, phone, fax, codes, phone2, fax2, createdate, county, provid"
                << ", sector";
      if (certificationDate) statement << ", datevfc";
      if (extension) statement << ", extension";
      if (firstName) statement << ", firstname";
      if (middleInitial) statement << ", initial";
      if (title) statement << ", title";
      if (parentProvider) statement << ", linkpin";
      if (additionalId) statement << ", alphaid";
      statement << ", active";
      if (subdivision) statement << ", subdiv";
      if (category1) statement << ", cat1";
      if (category2) statement << ", cat2";
      if (category3) statement << ", cat3";
      // The day of creation is the zero date, not today.
      statement << ", chgdate, userid) "
                << "VALUES('" << pin << "', '" << shippingContact << "', '" << facilityName
                << "', '" << shippingAddress1 << "', '" << shippingAddress2 << "', '"
                << shippingCity << "', '" << shippingState << "', '" << shippingZipCode << "', '"
                << mailContact << "', '" << mailAddress1 << "', '" << mailAddress2 << "', '"
                << mailCity << "', '" << mailState << "', '" << mailZipCode << "', '"
                << instructions << "', '" << shippingPhone << "', '" << shippingFax << "', '"
                << codes << "', '" << mailPhone << "', '" << mailFax << "', "
                << "{" << DateText(kZeroDate) << "}, '" << county << "', " << newId << " "
                << ", " << classification << " ";
      if (certificationDate) statement << ", {" << *certificationDate << "} ";
      if (extension) statement << ",'" << *extension << "'";
      if (firstName) statement << ",'" << *firstName << "'";
      if (middleInitial) statement << ",'" << *middleInitial << "'";
      if (title) statement << ",'" << *title << "'";
      if (parentProvider) statement << ",'" << *parentProvider << "'";
      if (additionalId) statement << ",'" << *additionalId << "'";
      statement << ",'" << active << "'";
      if (subdivision) statement << ",'" << *subdivision << "'";
      if (category1) statement << ",'" << *category1 << "'";
      if (category2) statement << ",'" << *category2 << "'";
      if (category3) statement << ",'" << *category3 << "'";
      statement << ", {" << today << "}, '" << kUserId << "')";
      service.log.Information({statement.text()});
      static_cast<void>(service.ReadConnection().Execute(statement));
      const Date enrolled = Today(service.clock);
      AddDefaultEnrollment(service.log, pin, enrolled, kUserId, service.ReadConnection());
      return;
    }

    Statement statement;
    statement << "UPDATE provider SET ";
    if (!aClassificationCode.IsMissing()) {
      const std::int32_t classification = RequireClassification(service, aClassificationCode);
      statement << "sector = " << classification << ", ";
    }
    if (certificationDate) {
      ValidateVFCCertDate(service.log, *certificationDate);
      statement << "datevfc = {" << *certificationDate << "}, ";
    }
    AssignIfPresent(statement, "extension = '", extension);
    AssignIfPresent(statement, "firstname = '", firstName);
    AssignIfPresent(statement, "initial = '", middleInitial);
    AssignIfPresent(statement, "title = '", title);
    AssignIfPresent(statement, "linkpin = '", parentProvider);
    AssignIfPresent(statement, "alphaid = '", additionalId);
    if (ValidateActiveValue(service.log, active)) {
      statement << "active = '" << active << "', ";
    }
    if (subdivision) {
      ValidateSubdivision(service.log, *subdivision, service.ReadConnection());
      statement << "subdiv = '" << *subdivision << "', ";
    }
    AssignIfPresent(statement, "cat1 = '", category1);
    AssignIfPresent(statement, "cat2 = '", category2);
    AssignIfPresent(statement, "cat3 = '", category3);
    statement << "contact = '" << shippingContact << "', "
              << "lastname = '" << facilityName << "', "
              << "address = '" << shippingAddress1 << "', "
              << "addres2 = '" << shippingAddress2 << "', "
              << "city = '" << shippingCity << "', "
              << "state = '" << shippingState << "', "
              << "zipcode = '" << shippingZipCode << "', "
              << "ml_contact = '" << mailContact << "', "
              << "ml_address = '" << mailAddress1 << "', "
              << "ml_addres2 = '" << mailAddress2 << "', "
              << "ml_city = '" << mailCity << "', "
              << "ml_state = '" << mailState << "', "
              << "ml_zipcode = '" << mailZipCode << "', "
              << "note = '" << instructions << "', "
              << "phone = '" << shippingPhone << "', "
              << "fax = '" << shippingFax << "', "
              << "phone2 = '" << mailPhone << "', "
              << "fax2 = '" << mailFax << "', "
              << "codes = '" << codes << "',";
    if (!county.empty()) statement << "county = '" << county << "', ";
    statement << "chgdate = {" << today << "},"
              << "userid = '" << kUserId << "'"
              << "WHERE ltrim(rtrim(pin)) = '" << pin << "'";
    service.log.Information({statement.text()});
    static_cast<void>(service.ReadConnection().Execute(statement));
  });
}

void cLotrix::providerShippingDataUpdate(
    const Text& aPIN, const Text& aFacilityLastName, const Text& aShippingContact,
    const Text& aShippingAddress1, const Text& aShippingAddress2, const Text& aShippingCity,
    const Text& aShippingState, const Text& aShippingZipCode, const Text& aShippingInstructions,
    const Text& aPhoneNumber, const Text& aFaxNumber, const Variant& aPhoneExtension,
    const Variant& aFirstName, const Variant& aMiddleInitial, const Variant& aTitle) {
  Service& service = *service_;
  InFrame(service.log, {"providerShippingDataUpdate"}, [&] {
    const std::string today = DateText(Today(service.clock));

    const std::string pin = UpperCase(aPIN);
    const std::string facilityName = UpperCase(aFacilityLastName);
    const std::string contact = UpperCase(aShippingContact);
    const std::string address1 = CleanedUpper(aShippingAddress1);
    const std::string address2 = CleanedUpper(aShippingAddress2);
    const std::string city = CleanedUpper(aShippingCity);
    const std::string state = CleanedUpper(aShippingState);
    const std::string zipCode = CleanedUpper(aShippingZipCode);
    std::string instructions = CleanedUpper(aShippingInstructions);
    const std::string phone = UpperCase(aPhoneNumber);
    const std::string fax = UpperCase(aFaxNumber);
    const OptionalText extension = UpperIfPresent(aPhoneExtension);
    const OptionalText firstName = UpperIfPresent(aFirstName);
    const OptionalText middleInitial = UpperIfPresent(aMiddleInitial);
    const OptionalText title = UpperIfPresent(aTitle);

    if (!ValidateProviderPIN(service.log, pin, true, service.ReadConnection())) {
      RaiseError(kShippingProviderNotFound);
    }
    if (IsBlank(facilityName)) RaiseError(kNullProviderName);
    if (IsBlank(contact)) RaiseError(kNullShippingContact);
    service.log.Information({"Before calling ValidateShippingAddress"});
    ValidateShippingAddress(service.log, address1, address2, city, zipCode, state,
                            service.ReadConnection());
    service.log.Information({"After calling ValidateShippingAddress"});
    if (IsBlank(instructions)) instructions = "NONE";
    if (!ValidatePhoneFaxFormat(service.log, phone)) RaiseError(kInvalidPhoneNumber);
    if (!IsBlank(fax) && !ValidatePhoneFaxFormat(service.log, fax)) RaiseError(kInvalidFaxNumber);

    Statement statement;
    statement << "UPDATE provider SET ";
    AssignIfPresent(statement, "extension = '", extension);
    AssignIfPresent(statement, "firstname = '", firstName);
    AssignIfPresent(statement, "initial = '", middleInitial);
    AssignIfPresent(statement, "title = '", title);
    const std::string county = GetCountyName(service, zipCode);
    if (!county.empty()) statement << "county = '" << county << "', ";
    statement << "contact = '" << contact << "', "
              << "lastname = '" << facilityName << "', "
              << "address = '" << address1 << "', "
              << "addres2 = '" << address2 << "', "
              << "city = '" << city << "', "
              << "state = '" << state << "', "
              << "zipcode = '" << zipCode << "', "
              << "note = '" << instructions << "', "
              << "phone = '" << phone << "', "
              << "fax = '" << fax << "', "
              << "chgdate = {" << today << "}, "
              << "userid = '" << kUserId << "' "
              << "WHERE ltrim(rtrim(pin)) = '" << pin << "'";
    service.log.Information({statement.text()});
    static_cast<void>(service.ReadConnection().Execute(statement));
  });
}

void cLotrix::providerEnrollmentAddUpdate(const Text& aPIN, const Text& aSource,
                                          const Text& aAgeGroup, const Text& aAll,
                                          const Text& aMedicaid, const Text& aUninsured,
                                          const Text& aAmIndian, const Text& aFQHC_RHC,
                                          const Text& aVFC, const Text& aG317, const Text& aState) {
  Service& service = *service_;
  InFrame(service.log, {"providerEnrollmentAddUpdate"}, [&] {
    const std::string today = DateText(Today(service.clock));
    const std::string pin = UpperCase(aPIN);
    const std::string source(TrimBlanks(UpperCase(aSource)));
    const std::string ageGroup = UpperCase(aAgeGroup);

    struct Count {
      std::string text;
      Message null;
      std::string_view label;
      Message notNumeric;
    };
    const std::array<Count, 8> counts = {{
        {UpperCase(aAll), kNullEnrollmentAllKids, "All Kids Total", kNonNumericEnrollmentAllKids},
        {UpperCase(aMedicaid), kNullEnrollmentMedicaid, "Medicaid Total",
         kNonNumericEnrollmentMedicaid},
        {UpperCase(aUninsured), kNullEnrollmentUninsured, "Uninsured Total",
         kNonNumericEnrollmentUninsured},
        {UpperCase(aAmIndian), kNullEnrollmentAmericanIndian, "American Indian Total",
         kNonNumericEnrollmentAmericanIndian},
        {UpperCase(aFQHC_RHC), kNullEnrollmentFqhcRhc, "FQHC/RHC Total",
         kNonNumericEnrollmentFqhcRhc},
        {UpperCase(aVFC), kNullEnrollmentVfc, "VFC Total", kNonNumericEnrollmentVfc},
        {UpperCase(aG317), kNullEnrollmentG317, "G317 Total", kNonNumericEnrollmentG317},
        {UpperCase(aState), kNullEnrollmentState, "State Total", kNonNumericEnrollmentState},
    }};

    if (IsBlank(pin)) RaiseError(kNullEnrollmentPin);
    if (IsBlank(source)) RaiseError(kNullEnrollmentSource);
    if (IsBlank(ageGroup)) RaiseError(kNullEnrollmentAgeGroup);
    for (const Count& count : counts) {
      if (IsBlank(count.text)) RaiseError(count.null);
    }
    RequireLength(source, 10, kEnrollmentFieldTooLong, "Source");
    for (const Count& count : counts) {
      RequireLength(count.text, 7, kEnrollmentFieldTooLong, count.label);
    }
    if (!IsNumeric(ageGroup)) RaiseError(kInvalidEnrollmentAgeGroup);
    const std::int16_t group = TextToInteger(ageGroup);
    if (group < 1 || group > 4) RaiseError(kInvalidEnrollmentAgeGroup);
    constexpr std::string_view kSources = "ABCDEFGZ";
    if (source.size() != 1 || kSources.find(source) == std::string_view::npos) {
      RaiseError(kInvalidEnrollmentSource);
    }
    std::array<std::int32_t, 8> n{};
    for (std::size_t i = 0; i < counts.size(); ++i) {
      if (!IsNumeric(counts[i].text)) RaiseError(counts[i].notNumeric);
      n[i] = TextToLong(counts[i].text);
    }
    const bool exists = ValidateEnrollmentRecord(service.log, pin, service.ReadConnection());

    constexpr std::array<SqlText, 4> kDigits = {"1", "2", "3", "4"};
    const SqlText digit = kDigits[static_cast<std::size_t>(group) - 1];
    Statement statement;
    if (exists) {
      statement << "UPDATE enroll SET ensource= '" << source << "', chgdate = {" << today << "}, "
                << "allkids" << digit << " = " << n[0] << ", medicaid" << digit << " = " << n[1]
                << ", "
                << "uninsured" << digit << " = " << n[2] << ", amindian" << digit << " = " << n[3]
                << ", "
                << "fqhc_rhc" << digit << " = " << n[4] << ", vfckids" << digit << " = " << n[5]
                << ", "
                << "g317kids" << digit << " = " << n[6] << ", statekids" << digit << " = " << n[7]
                << ", "
                << " userid = '" << kUserId << "' "
                << "WHERE  ltrim(rtrim(Pin)) = '" << pin << "' ";
    } else {
      statement << "INSERT INTO enroll (pin, ensource, chgdate, allkids" << digit << ", medicaid"
                << digit << ", uninsured" << digit << ", "
                << "amindian" << digit << ", fqhc_rhc" << digit << ", vfckids" << digit
                << ", g317kids" << digit << ", statekids" << digit << ", userid) VALUES"
                << " ( '" << pin << "', "
                << "'" << source << "', "
                << "{" << today << "}, ";
      for (const std::int32_t count : n) statement << count << ", ";
      statement << "'" << kUserId << "')";
    }
    service.log.Information({statement.text()});
    RunStatement(statement, service.ReadConnection());
  });
}

void AddDefaultEnrollment(TraceLog& log, const std::string& pin, Date changeDate,
                          const std::string& userId, Connection& connection) {
  if (ValidateEnrollmentRecord(log, pin, connection)) return;
  Statement statement;
  // The blanks behind the PIN and the date are part of the text.
  statement << "INSERT INTO enroll (pin, chgdate, userid,"
            << "allkids1, medicaid1, uninsured1, amindian1, fqhc_rhc1, vfckids1, g317kids1, "
            << "statekids1,"
            << "allkids2, medicaid2, uninsured2, amindian2, fqhc_rhc2, vfckids2, g317kids2, "
            << "statekids2,"
            << "allkids3, medicaid3, uninsured3, amindian3, fqhc_rhc3, vfckids3, g317kids3, "
            << "statekids3,"
            << "allkids4, medicaid4, uninsured4, amindian4, fqhc_rhc4, vfckids4, g317kids4, "
            << "statekids4,"
            << "other1, other2, other3, other4)"
            << "VALUES "
            << "('" << pin << " ',{" << DateText(changeDate) << " },'" << userId << "',"
            << "0,0,0,0,0,0,0,0,"
            << "0,0,0,0,0,0,0,0,"
            << "0,0,0,0,0,0,0,0,"
            << "0,0,0,0,0,0,0,0,"
            << "0,0,0,0)";
  static_cast<void>(connection.Execute(statement));
}

void cLotrix::providerAdditionalInfoUpdate(const Text& aPIN, const Text& aProviderType,
                                           const Text& aClassification, const Text& aCurrentVFCCert,
                                           const Text& aCohort, const Text& aEmpIdNum,
                                           const Text& aQuorvin) {
  Service& service = *service_;
  InFrame(service.log, {"providerAdditionalInfoUpdate"}, [&] {
    const std::string today = DateText(Today(service.clock));
    const std::string pin = UpperCase(aPIN);
    const std::string providerType = UpperCase(aProviderType);
    const std::string classification = UpperCase(aClassification);
    const std::string cohort = UpperCase(aCohort);
    const std::string employeeId = UpperCase(aEmpIdNum);
    const std::string quorvin = UpperCase(aQuorvin);

    if (IsBlank(pin)) RaiseError(kNullProviderPin);
    if (IsBlank(providerType)) RaiseError(kNullProviderType);
    if (IsBlank(classification)) RaiseError(kClassificationCodeNeeded);
    if (IsBlank(aCurrentVFCCert)) RaiseError(kNullVfcCertificationDate);
    if (IsBlank(cohort)) RaiseError(kNullCohort);
    if (IsBlank(employeeId)) RaiseError(kNullEmployeeId);
    if (IsBlank(quorvin)) RaiseError(kNullQuorvin);
    RequireLength(providerType, 10, kProviderFieldTooLong, "Provider Type");
    RequireLength(classification, 2, kProviderFieldTooLong, "Classification");
    RequireLength(cohort, 10, kProviderFieldTooLong, "Cohort");
    RequireLength(employeeId, 15, kProviderFieldTooLong, "Employee ID Number");
    const auto certificationDate = TextToDate(aCurrentVFCCert);
    if (!certificationDate) RaiseError(kInvalidVfcCertificationDate);
    if (!IsNumeric(classification)) RaiseError(kNonNumericClassification);
    const std::int32_t sector = TextToInteger(classification);
    const std::string flag(TrimBlanks(quorvin));
    if (flag != "NO" && flag != "YES") RaiseError(kInvalidQuorvin);
    if (!ValidateProviderPIN(service.log, pin, true, service.ReadConnection())) {
      RaiseError(kProviderNotFound);
    }

    const Statement statement = Statement()
                                << "UPDATE provider SET cat2 = '" << providerType << "', "
                                << "chgdate = {" << today << "}, "
                                << "sector = " << sector << ", datevfc = {"
                                << DateText(*certificationDate) << "}, cat4 = '" << cohort << "', "
                                << "alphaid = '" << employeeId << "', cat1 = '" << flag << "' "
                                << "WHERE  ltrim(rtrim(Pin)) = '" << pin << "' ";
    service.log.Information({statement.text()});
    RunStatement(statement, service.ReadConnection());
  });
}

void cLotrix::physicianAddUpdate(const Text& aPIN, const Text& aLastName, const Text& aFirstName,
                                 const Text& aMiddleInitial, const Text& aTitle,
                                 const Text& aSiteMedID, const Text& aMedicaidNum,
                                 const Text& aLicenseNum) {
  Service& service = *service_;
  InFrame(service.log, {.name = "physicianAddUpdate", .end = ""}, [&] {
    const std::string today = DateText(Today(service.clock));
    const std::string pin = UpperCase(aPIN);
    const std::string lastName = UpperCase(aLastName);
    const std::string firstName = UpperCase(aFirstName);
    const std::string middleInitial = UpperCase(aMiddleInitial);
    const std::string title = UpperCase(aTitle);
    const std::string siteMedId = UpperCase(aSiteMedID);
    const std::string& medicaidNumber = aMedicaidNum;
    const std::string licenseNumber = UpperCase(aLicenseNum);

    if (IsBlank(pin)) RaiseError(kNullProviderPin);
    if (IsBlank(lastName)) RaiseError(kNullPhysicianLastName);
    if (IsBlank(firstName)) RaiseError(kNullPhysicianFirstName);
    // A blank field is neither checked nor written: an update clears none.
    const auto ifNotBlank = [](const std::string& text) {
      return IsBlank(text) ? OptionalText() : OptionalText(text);
    };
    const OptionalText initialWritten = ifNotBlank(middleInitial);
    const OptionalText titleWritten = ifNotBlank(title);
    const OptionalText siteMedIdWritten = ifNotBlank(siteMedId);
    const OptionalText medicaidWritten = ifNotBlank(medicaidNumber);
    const OptionalText licenseWritten = ifNotBlank(licenseNumber);
    RequireLength(lastName, 20, kPhysicianFieldTooLong, "Last Name");
    RequireLength(firstName, 15, kPhysicianFieldTooLong, "First Name");
    RequireLength(middleInitial, 1, kPhysicianFieldTooLong, "Middle Initial");
    RequireLength(title, 9, kPhysicianFieldTooLong, "Title");
    RequireLength(siteMedId, 12, kPhysicianFieldTooLong, "Site Med ID");
    RequireLength(medicaidNumber, 12, kPhysicianFieldTooLong, "Medicaid Number");
    RequireLength(licenseNumber, 12, kPhysicianFieldTooLong, "License Number");
    const bool exists =
        ValidatePhysicnRecord(service.log, pin, lastName, firstName, service.ReadConnection());

    Statement statement;
    if (exists) {
      statement << "UPDATE physicn SET firstname = '" << firstName << "', ";
      AssignIfPresent(statement, "initial = '", initialWritten);
      AssignIfPresent(statement, "title = '", titleWritten);
      AssignIfPresent(statement, "other1 = '", siteMedIdWritten);
      AssignIfPresent(statement, "medicaidno = '", medicaidWritten);
      AssignIfPresent(statement, "medlicense = '", licenseWritten);
      statement << "chgdate = {" << today << "} "
                << "WHERE  pin = '" << pin << "' AND lastname = '" << lastName << "' ";
    } else {
      statement << "INSERT INTO physicn (pin, lastname, firstname, ";
      if (initialWritten) statement << "initial, ";
      if (titleWritten) statement << "title, ";
      if (siteMedIdWritten) statement << "other1, ";
      if (medicaidWritten) statement << "medicaidno, ";
      if (licenseWritten) statement << "medlicense, ";
      statement << "chgdate) "
                << "VALUES ( '" << pin << "', '" << lastName << "', '" << firstName << "', ";
      for (const OptionalText& written :
           {initialWritten, titleWritten, siteMedIdWritten, medicaidWritten, licenseWritten}) {
        if (written) statement << "'" << *written << "', ";
      }
      statement << "{" << today << "} )";
    }
    service.log.Information({statement.text()});
    RunStatement(statement, service.ReadConnection());
  });
}

void cLotrix::physicianDeleteByPin(const Text& aPIN) {
  Service& service = *service_;
  InFrame(service.log, {.name = "physicianDeleteByPin", .end = ""}, [&] {
    // Whether there is such a provider is not asked.
    static_cast<void>(ValidateProviderPIN(service.log, aPIN, true, service.ReadConnection()));
    const Statement statement = Statement() << "Delete From physicn Where pin == '" << aPIN << "'";
    service.log.Information({statement.text()});
    RunStatement(statement, service.ReadConnection());
  });
}

}  // namespace lotrix
