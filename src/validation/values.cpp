#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/utility/sql_text.h"
#include "src/validation/validation.h"

namespace lotrix {

bool ValidateActiveValue(TraceLog& log, const std::string& activeCode) {
  return InFrame(log, {"ValidateActiveValue"}, [&] {
    const std::string code = UpperCase(activeCode);
    return code == "Y" || code == "N";
  });
}

bool ValidatePhoneFaxFormat(TraceLog& log, const std::string& number) {
  return InFrame(log, {"ValidatePhoneFaxFormat"}, [&] {
    constexpr std::size_t kFormattedLength = 14;
    if (Utf16Length(number) != kFormattedLength) return false;
    const std::string stripped = StripPhoneNumber(TrimBlanks(number));
    return ToUtf16(number) == FormatPhone(ToUtf16(stripped));
  });
}

void ValidateVFCCertDate(TraceLog& log, const std::string& date) {
  InFrame(log, {"ValidateVFCCertDate"}, [&] {
    if (!TextToDate(date)) RaiseError(kInvalidVfcCertificationDate);
  });
}

void ValidateExcessAllowance(TraceLog& log, const std::string& excessAllowance) {
  InFrame(log, {.name = "ValidateExcessAllowance", .end = ""}, [&] {
    const std::int32_t allowance = TextToLong(excessAllowance);
    if (allowance < 1 || allowance > 5) RaiseError(kExcessAllowanceOutOfRange);
  });
}

void ValidateTotalDoses(TraceLog& log, const std::array<std::int32_t, 13>& groups,
                        std::int32_t total) {
  InFrame(log, {"ValidateTotalDoses"}, [&] {
    std::int32_t sum = 0;
    for (const std::int32_t group : groups) sum = SumOf(sum, group);
    if (sum != total) RaiseError(kDosesDoNotMatchTotal);
  });
}

}  // namespace lotrix
