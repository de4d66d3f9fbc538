// Writes down what the registered type library says of the published types, in the
// notation of published.txt, and what else scripts and tools depend on.
#include <string>
#include <vector>

#include "automation_client.h"
#include "lotrix_h.h"

namespace {

using lotrix_client::Bstr;
using lotrix_client::Com;
using lotrix_client::Need;

void WriteLine(const std::string& line) { std::printf("%s\n", line.c_str()); }

std::string NameOf(ITypeInfo* type) {
  Bstr name;
  Need(type->GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr), "name");
  return name.utf8();
}

// A class's name for its default interface.
std::string ReferredName(ITypeInfo* type, HREFTYPE reference) {
  Com<ITypeInfo> referred;
  Need(type->GetRefTypeInfo(reference, referred.Receive()), "a type that is referred to");
  const std::string name = NameOf(referred.get());
  return name.starts_with('_') ? name.substr(1) : name;
}

std::string TypeName(ITypeInfo* type, const TYPEDESC& description) {
  switch (description.vt) {
    case VT_BSTR:
      return "String";
    case VT_I4:
      return "Long";
    case VT_BOOL:
      return "Boolean";
    case VT_VARIANT:
      return "Variant";
    case VT_DATE:
      return "Date";
    case VT_R8:
      return "Double";
    case VT_DISPATCH:
      return "Object";
    case VT_USERDEFINED:
      return ReferredName(type, description.hreftype);
    case VT_PTR:
      if (description.lptdesc->vt == VT_USERDEFINED) return TypeName(type, *description.lptdesc);
      return "byref " + TypeName(type, *description.lptdesc);
    default:
      return "type " + std::to_string(description.vt);
  }
}

std::string DefaultText(const PARAMDESC& parameter) {
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) == 0) return "";
  const VARIANT& value = parameter.pparamdescex->varDefaultValue;
  if (value.vt == VT_BSTR) {
    return " = \"" + lotrix_client::ToUtf8({value.bstrVal, SysStringLen(value.bstrVal)}) + "\"";
  }
  if (value.vt == VT_I4) return " = " + std::to_string(value.lVal);
  return " = a default of type " + std::to_string(value.vt);
}

std::string ParameterText(ITypeInfo* type, const ELEMDESC& element, const std::string& name) {
  const bool optional = (element.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
  return (optional ? "optional " : "") + TypeName(type, element.tdesc) + " " + name +
         DefaultText(element.paramdesc);
}

std::string KindText(INVOKEKIND kind) {
  switch (kind) {
    case INVOKE_FUNC:
      return "method";
    case INVOKE_PROPERTYGET:
      return "get";
    case INVOKE_PROPERTYPUT:
      return "let";
    default:
      return "set";
  }
}

// A result is a pointer to where it goes.
std::string ResultText(ITypeInfo* type, const ELEMDESC& element) {
  return element.tdesc.vt == VT_PTR ? TypeName(type, *element.tdesc.lptdesc) : "no pointer";
}

std::string FunctionText(ITypeInfo* type, const FUNCDESC& function) {
  std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1, nullptr);
  UINT found = 0;
  Need(type->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &found),
       "names");
  std::vector<std::string> texts;
  for (UINT i = 0; i < names.size(); ++i) {
    texts.push_back(i < found ? lotrix_client::ToUtf8({names[i], SysStringLen(names[i])}) : "");
    SysFreeString(names[i]);
  }
  // What a property is let or set to has no name of its own.
  const bool assigns = (function.invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
  if (assigns) texts.back() = "value";
  std::string parameters;
  std::string result;
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      result = " " + ResultText(type, element);
      continue;
    }
    const auto position = static_cast<std::size_t>(i) + 1;
    if (!parameters.empty()) parameters += ", ";
    parameters += ParameterText(type, element, texts[position]);
  }
  return lotrix_client::Hex(function.memid) + " " + KindText(function.invkind) + " " + texts[0] +
         "(" + parameters + ")" + result;
}

// A dual interface is described twice; functions have their places in one of them.
void VtableSide(ITypeInfo* dispatch, Com<ITypeInfo>& type) {
  HREFTYPE reference = 0;
  Need(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), "the vtable's side");
  Need(dispatch->GetRefTypeInfo(reference, type.Receive()), "the vtable's side");
}

// Of a dual interface: the functions as the vtable has them, in its order.
void WriteInterface(ITypeInfo* dispatch) {
  TYPEATTR* attributes = nullptr;
  Com<ITypeInfo> type;
  VtableSide(dispatch, type);
  Need(type->GetTypeAttr(&attributes), "attributes");
  const UINT functions = attributes->cFuncs;
  const bool dual = (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
  const bool automation = (attributes->wTypeFlags & TYPEFLAG_FOLEAUTOMATION) != 0;
  type->ReleaseTypeAttr(attributes);
  WriteLine("interface " + NameOf(dispatch) + (dual ? "" : ", not dual") +
            (automation ? "" : ", not for automation"));
  SHORT offset = 7 * sizeof(void*);
  for (UINT i = 0; i < functions; ++i) {
    FUNCDESC* function = nullptr;
    Need(type->GetFuncDesc(i, &function), "a function");
    const bool inPlace = function->oVft == offset;
    const bool answersResult = function->elemdescFunc.tdesc.vt == VT_HRESULT;
    WriteLine(FunctionText(type.get(), *function) +
              (inPlace ? "" : ", out of place " + std::to_string(function->oVft)) +
              (answersResult ? "" : ", no HRESULT"));
    type->ReleaseFuncDesc(function);
    offset = static_cast<SHORT>(offset + static_cast<SHORT>(sizeof(void*)));
  }
}

void WriteRecord(ITypeInfo* type) {
  TYPEATTR* attributes = nullptr;
  Need(type->GetTypeAttr(&attributes), "attributes");
  const UINT fields = attributes->cVars;
  const bool published = attributes->guid != GUID_NULL;
  type->ReleaseTypeAttr(attributes);
  WriteLine("record " + NameOf(type) + (published ? "" : ", without an identifier"));
  for (UINT i = 0; i < fields; ++i) {
    VARDESC* field = nullptr;
    Need(type->GetVarDesc(i, &field), "a field");
    Bstr name;
    Need(type->GetDocumentation(field->memid, name.Receive(), nullptr, nullptr, nullptr), "name");
    WriteLine(TypeName(type, field->elemdescVar.tdesc) + " " + name.utf8());
    type->ReleaseVarDesc(field);
  }
}

void WriteClass(ITypeInfo* type) {
  TYPEATTR* attributes = nullptr;
  Need(type->GetTypeAttr(&attributes), "attributes");
  const bool creatable = (attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0;
  const UINT interfaces = attributes->cImplTypes;
  type->ReleaseTypeAttr(attributes);
  std::string line = "class " + NameOf(type) + (creatable ? " creatable" : " not creatable");
  for (UINT i = 0; i < interfaces; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    Com<ITypeInfo> interfaceType;
    Need(type->GetRefTypeOfImplType(i, &reference), "an interface");
    Need(type->GetImplTypeFlags(i, &flags), "an interface");
    Need(type->GetRefTypeInfo(reference, interfaceType.Receive()), "an interface");
    line += (flags & IMPLTYPEFLAG_FDEFAULT) != 0 ? " default " : " ";
    line += NameOf(interfaceType.get());
  }
  WriteLine(line);
}

void WriteType(ITypeInfo* type, TYPEKIND kind) {
  switch (kind) {
    case TKIND_DISPATCH:
      return WriteInterface(type);
    case TKIND_RECORD:
      return WriteRecord(type);
    case TKIND_COCLASS:
      return WriteClass(type);
    default:
      return WriteLine("something else: " + NameOf(type));
  }
}

// The arguments that a caller passes by name.
UINT NamedParameters(const FUNCDESC& function) {
  if (function.invkind == INVOKE_PROPERTYPUT || function.invkind == INVOKE_PROPERTYPUTREF) return 0;
  UINT named = 0;
  for (SHORT i = 0; i < function.cParams; ++i) {
    const PARAMDESC& parameter = function.lprgelemdescParam[i].paramdesc;
    if ((parameter.wParamFlags & PARAMFLAG_FRETVAL) == 0) ++named;
  }
  return named;
}

// Late-bound clients find members and parameters as the library has them.
void CheckNames(IDispatch* object, ITypeInfo* dispatch) {
  Com<ITypeInfo> type;
  VtableSide(dispatch, type);
  TYPEATTR* attributes = nullptr;
  Need(type->GetTypeAttr(&attributes), "attributes");
  const UINT functions = attributes->cFuncs;
  type->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < functions; ++i) {
    FUNCDESC* function = nullptr;
    Need(type->GetFuncDesc(i, &function), "a function");
    const UINT count = NamedParameters(*function) + 1;
    std::vector<BSTR> names(count, nullptr);
    UINT found = 0;
    Need(type->GetNames(function->memid, names.data(), count, &found), "names");
    std::vector<DISPID> ids(count, DISPID_UNKNOWN);
    std::vector<DISPID> expected(count);
    expected[0] = function->memid;
    for (UINT j = 1; j < count; ++j) expected[j] = static_cast<DISPID>(j) - 1;
    const HRESULT result =
        object->GetIDsOfNames(IID_NULL, names.data(), count, LOCALE_USER_DEFAULT, ids.data());
    if (FAILED(result) || found != count || ids != expected) {
      WriteLine("no identifiers for " + lotrix_client::ToUtf8(names[0]));
    }
    for (BSTR name : names) SysFreeString(name);
    type->ReleaseFuncDesc(function);
  }
}

// An object gives out the type information of its own default interface.
void CheckObject(const CLSID& classId, const IID& interfaceId) {
  Com<IDispatch> object;
  Need(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveAny()),
       "an object");
  UINT count = 0;
  Need(object->GetTypeInfoCount(&count), "type information");
  Com<ITypeInfo> type;
  Need(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.Receive()), "type information");
  TYPEATTR* attributes = nullptr;
  Need(type->GetTypeAttr(&attributes), "attributes");
  const bool own = attributes->guid == interfaceId;
  type->ReleaseTypeAttr(attributes);
  WriteLine(NameOf(type.get()) + (count == 1 && own ? " of its object" : " not of its object"));
  CheckNames(object.get(), type.get());
}

}  // namespace

int wmain() {
  Need(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "COM");
  {
    Com<ITypeLib> library;
    Need(LoadRegTypeLib(LIBID_Lotrix, 1, 0, LOCALE_NEUTRAL, library.Receive()),
         "the registered type library");
    Bstr name;
    Need(library->GetDocumentation(-1, name.Receive(), nullptr, nullptr, nullptr), "name");
    WriteLine("library " + name.utf8());
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
      Com<ITypeInfo> type;
      TYPEKIND kind = TKIND_MAX;
      Need(library->GetTypeInfo(i, type.Receive()), "a type");
      Need(library->GetTypeInfoType(i, &kind), "a type");
      WriteType(type.get(), kind);
    }
    CheckObject(CLSID_cLotrix, IID__cLotrix);
    CheckObject(CLSID_cResultSet, IID__cResultSet);
  }
  CoUninitialize();
  WriteLine("finished");
  return 0;
}
