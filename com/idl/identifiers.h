// The identifiers of the published types. Clients are compiled against them:
// they never change.
#ifndef LOTRIX_COM_IDL_IDENTIFIERS_H
#define LOTRIX_COM_IDL_IDENTIFIERS_H

#include <string_view>

namespace lotrix::com {

inline constexpr std::string_view kLibraryId = "860b0d7a-3a2b-4966-bde5-65449c23456e";
inline constexpr std::string_view kServiceInterfaceId = "fe0c5661-dd07-4716-9673-7bb6922cd97e";
inline constexpr std::string_view kServiceClassId = "7e1acbdf-dbd6-40a0-b74b-e6fc1c30b47f";
inline constexpr std::string_view kResultSetInterfaceId = "95cbdc4b-6b48-4993-a285-5ce657818ef9";
inline constexpr std::string_view kResultSetClassId = "6a641774-6422-406e-8ab6-b88ec6c9453b";
inline constexpr std::string_view kCollectionInterfaceId = "4e67c6fc-30e6-4a6c-b0f9-58ac9d814cbe";
inline constexpr std::string_view kCollectionClassId = "4add5129-4c0c-45e9-84a4-10ed6e3649bd";
inline constexpr std::string_view kContractId = "42fea74b-9fe7-4330-9940-3fffd6b146f6";

}  // namespace lotrix::com

#endif
