#include "com/connection.h"

#include <span>
#include <utility>
#include <vector>

#include "com/automation_object.h"
#include "com/enumerator.h"
#include "lotrix/recordset.h"
#include "src/database/connection_access.h"
#include "src/errors/raise_error.h"

namespace lotrix::com {

namespace {

using automation::FromLong;
using automation::FromObject;
using automation::FromText;
using automation::Held;
using automation::OwnedVariant;

Parameter RequiredParameter(std::string_view name) {
  return {name, ParameterType::kVariant, false, {}};
}
Parameter OptionalParameter(std::string_view name) {
  return {name, ParameterType::kVariant, true, {}};
}

std::string TextOr(const VARIANT* given, std::string omitted) {
  return given == nullptr ? std::move(omitted) : TextIn(*given);
}
std::int32_t LongOr(const VARIANT* given, std::int32_t omitted) {
  return given == nullptr ? omitted : LongIn(*given);
}

OwnedVariant FromLogical(bool logical) { return automation::FromValue(logical); }

// Late-bound only: their shape is that of ADO's objects, whose type library is the
// system's.
using AdoShaped = AutomationObject<IDispatch>;

// A recordset and what it lives on.
struct OpenRecordset {
  std::shared_ptr<Connection> connection;
  std::unique_ptr<Recordset> recordset;
};

class FieldObject final : public AdoShaped {
 public:
  FieldObject(std::shared_ptr<OpenRecordset> source, std::int32_t index)
      : source_(std::move(source)), index_(index) {}

 private:
  enum Id : std::uint32_t { kValue = DISPID_VALUE, kName = 1, kType = 2 };

  [[nodiscard]] const GUID& Identifier() const override { return IID_IDispatch; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    using enum MemberKind;
    static const std::vector<MemberDescription> kMembers = {
        {"Value", kValue, kPropertyGet, {}, "Variant"},
        {"Name", kName, kPropertyGet, {}, "String"},
        {"Type", kType, kPropertyGet, {}, "Long"},
    };
    return kMembers;
  }
  void Run(const MemberDescription& member, Given /*given*/, VARIANT& result) override {
    const Field field = source_->recordset->Fields().Item(index_);
    switch (static_cast<Id>(member.dispatchId)) {
      case kValue:
        return automation::FromValue(field.Value()).MoveTo(result);
      case kName:
        return FromText(field.Name()).MoveTo(result);
      case kType:
        return FromLong(static_cast<std::int32_t>(field.Type())).MoveTo(result);
    }
  }

  std::shared_ptr<OpenRecordset> source_;
  std::int32_t index_;
};

Held<IDispatch> NewField(const std::shared_ptr<OpenRecordset>& source, std::int32_t index) {
  static_cast<void>(source->recordset->Fields().Item(index));  // throws for one that is not there
  return Held<IDispatch>(new FieldObject(source, index));
}

std::int32_t FieldIndex(const Recordset& recordset, const VARIANT& index) {
  const Value position = ValueIn(index, ParameterType::kLong);
  const auto* const name = std::get_if<std::string>(&position);
  if (name == nullptr) return LongIn(index);
  const std::string& wanted = recordset.Fields().Item(*name).Name();
  std::int32_t found = 0;
  while (recordset.Fields().Item(found).Name() != wanted) ++found;
  return found;
}

class FieldsObject final : public AdoShaped {
 public:
  explicit FieldsObject(std::shared_ptr<OpenRecordset> source) : source_(std::move(source)) {}

 private:
  enum Id : std::uint32_t {
    kItem = DISPID_VALUE,
    kCount = 1,
    kNewEnum = static_cast<std::uint32_t>(DISPID_NEWENUM)
  };

  [[nodiscard]] const GUID& Identifier() const override { return IID_IDispatch; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    using enum MemberKind;
    static const std::vector<MemberDescription> kMembers = {
        {"Item", kItem, kPropertyGet, {RequiredParameter("Index")}, "Field"},
        {"Count", kCount, kPropertyGet, {}, "Long"},
        {"_NewEnum", kNewEnum, kPropertyGet, {}, "Unknown"},
    };
    return kMembers;
  }
  void Run(const MemberDescription& member, Given given, VARIANT& result) override {
    const Recordset& recordset = *source_->recordset;
    switch (static_cast<Id>(member.dispatchId)) {
      case kItem:
        return FromObject(NewField(source_, FieldIndex(recordset, *given[0])).get()).MoveTo(result);
      case kCount:
        return FromLong(recordset.Fields().Count()).MoveTo(result);
      case kNewEnum: {
        const auto fieldAt = [source = source_](std::int32_t position, VARIANT& item) {
          if (position > source->recordset->Fields().Count()) return false;
          FromObject(NewField(source, position - 1).get()).MoveTo(item);
          return true;
        };
        result.punkVal = NewEnumerator(fieldAt).release();
        result.vt = VT_UNKNOWN;
        return;
      }
    }
  }

  std::shared_ptr<OpenRecordset> source_;
};

std::shared_ptr<Connection> ConnectionBehind(IDispatch* object);

class RecordsetObject final : public AdoShaped {
 public:
  explicit RecordsetObject(OpenRecordset source)
      : source_(std::make_shared<OpenRecordset>(std::move(source))) {}

 private:
  enum Id : std::uint32_t {
    kFields = DISPID_VALUE,
    kState = 1,
    kRecordCount = 2,
    kEof = 3,
    kMoveNext = 4,
    kClose = 5,
    kOpen = 6
  };

  [[nodiscard]] const GUID& Identifier() const override { return IID_IDispatch; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    using enum MemberKind;
    static const std::vector<MemberDescription> kMembers = {
        {"Fields", kFields, kPropertyGet, {}, "Fields"},
        {"State", kState, kPropertyGet, {}, "Long"},
        {"RecordCount", kRecordCount, kPropertyGet, {}, "Long"},
        {"EOF", kEof, kPropertyGet, {}, "Boolean"},
        {"MoveNext", kMoveNext, kMethod, {}, {}},
        {"Close", kClose, kMethod, {}, {}},
        {"Open",
         kOpen,
         kMethod,
         {RequiredParameter("Source"), RequiredParameter("ActiveConnection"),
          OptionalParameter("CursorType"), OptionalParameter("LockType"),
          OptionalParameter("Options")},
         {}},
    };
    return kMembers;
  }
  void Run(const MemberDescription& member, Given given, VARIANT& result) override {
    Recordset& recordset = *source_->recordset;
    switch (static_cast<Id>(member.dispatchId)) {
      case kFields:
        return FromObject(Held<IDispatch>(new FieldsObject(source_)).get()).MoveTo(result);
      case kState:
        return FromLong(static_cast<std::int32_t>(recordset.State())).MoveTo(result);
      case kRecordCount:
        return FromLong(recordset.RecordCount()).MoveTo(result);
      case kEof:
        return FromLogical(recordset.EndOfFile()).MoveTo(result);
      case kMoveNext:
        return recordset.MoveNext();
      case kClose:
        return recordset.Close();
      case kOpen:
        return Open(given);
    }
  }
  void Open(Given given) {
    const std::string source = TextIn(*given[0]);
    std::shared_ptr<Connection> connection = ConnectionBehind(ObjectArgument(*given[1]).get());
    const std::int32_t cursor = LongOr(given[2], -1);
    const std::int32_t lock = LongOr(given[3], -1);
    source_->recordset->Open(source, *connection, static_cast<CursorType>(cursor),
                             static_cast<LockType>(lock),
                             static_cast<CommandType>(LongOr(given[4], -1)));
    source_->connection = std::move(connection);
  }

  std::shared_ptr<OpenRecordset> source_;
};

// As the collection's: an interface that nobody else answers to.
// {5f2c8f0a-94f1-4d7e-8b3b-7f1a3f0c9d52}
constexpr GUID kOwnConnection = {
    0x5f2c8f0a, 0x94f1, 0x4d7e, {0x8b, 0x3b, 0x7f, 0x1a, 0x3f, 0x0c, 0x9d, 0x52}};

class ConnectionObject final : public AdoShaped {
 public:
  explicit ConnectionObject(std::shared_ptr<Connection> connection)
      : connection_(std::move(connection)) {}

  [[nodiscard]] const std::shared_ptr<Connection>& connection() const { return connection_; }

 private:
  enum Id : std::uint32_t {
    kConnectionString = DISPID_VALUE,
    kMode = 1,
    kState = 2,
    kOpen = 3,
    kClose = 4,
    kExecute = 5,
    kBeginTrans = 6,
    kCommitTrans = 7,
    kRollbackTrans = 8
  };

  [[nodiscard]] const GUID& Identifier() const override { return IID_IDispatch; }
  [[nodiscard]] void* OtherInterface(const GUID& identifier) override {
    return identifier == kOwnConnection ? this : nullptr;
  }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    using enum MemberKind;
    static const std::vector<MemberDescription> kMembers = {
        {"ConnectionString", kConnectionString, kPropertyGet, {}, "String"},
        {"ConnectionString", kConnectionString, kPropertyLet, {RequiredParameter("value")}, {}},
        {"Mode", kMode, kPropertyGet, {}, "Long"},
        {"Mode", kMode, kPropertyLet, {RequiredParameter("value")}, {}},
        {"State", kState, kPropertyGet, {}, "Long"},
        {"Open",
         kOpen,
         kMethod,
         {OptionalParameter("ConnectionString"), OptionalParameter("UserID"),
          OptionalParameter("Password"), OptionalParameter("Options")},
         {}},
        {"Close", kClose, kMethod, {}, {}},
        {"Execute",
         kExecute,
         kMethod,
         {RequiredParameter("CommandText"), OptionalParameter("RecordsAffected"),
          OptionalParameter("Options")},
         "Recordset"},
        {"BeginTrans", kBeginTrans, kMethod, {}, "Long"},
        {"CommitTrans", kCommitTrans, kMethod, {}, {}},
        {"RollbackTrans", kRollbackTrans, kMethod, {}, {}},
    };
    return kMembers;
  }
  void Run(const MemberDescription& member, Given given, VARIANT& result) override {
    const bool reads = member.kind == MemberKind::kPropertyGet;
    switch (static_cast<Id>(member.dispatchId)) {
      case kConnectionString:
        if (!reads) return connection_->ConnectionString(TextIn(*given[0]));
        return FromText(connection_->ConnectionString()).MoveTo(result);
      case kMode:
        if (!reads) return connection_->Mode(static_cast<ConnectMode>(LongIn(*given[0])));
        return FromLong(static_cast<std::int32_t>(connection_->Mode())).MoveTo(result);
      case kState:
        return FromLong(static_cast<std::int32_t>(connection_->State())).MoveTo(result);
      case kOpen:
        return Open(given);
      case kClose:
        return connection_->Close();
      case kExecute: {
        const Held<IDispatch> recordset(
            new RecordsetObject({connection_, connection_->Execute(TextIn(*given[0]))}));
        return FromObject(recordset.get()).MoveTo(result);
      }
      case kBeginTrans:
        connection_->BeginTrans();
        // How deep transactions are nested, which they are not.
        return FromLong(1).MoveTo(result);
      case kCommitTrans:
        return connection_->CommitTrans();
      case kRollbackTrans:
        return connection_->RollbackTrans();
    }
  }
  void Open(Given given) {
    const std::string connectionString = TextOr(given[0], {});
    const std::string userId = TextOr(given[1], {});
    connection_->Open(connectionString, userId, TextOr(given[2], {}), LongOr(given[3], -1));
  }

  std::shared_ptr<Connection> connection_;
};

std::shared_ptr<Connection> ConnectionBehind(IDispatch* object) {
  void* own = nullptr;
  if (object == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  if (FAILED(object->QueryInterface(kOwnConnection, &own))) {
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
  const Held<ConnectionObject> held(static_cast<ConnectionObject*>(own));
  return held->connection();
}

}  // namespace

Held<IDispatch> ConnectionObjectOf(const std::shared_ptr<Connection>& connection,
                                   Held<IDispatch>& handedOut) {
  if (const std::shared_ptr<void> foreign = ConnectionAccess::ForeignObject(*connection)) {
    return automation::Hold(static_cast<IDispatch*>(foreign.get()));
  }
  if (handedOut == nullptr || ConnectionBehind(handedOut.get()) != connection) {
    handedOut.reset(new ConnectionObject(connection));
  }
  return automation::Hold(handedOut.get());
}

}  // namespace lotrix::com
