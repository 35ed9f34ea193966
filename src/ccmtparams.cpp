#include "ccmtparams.h"

#include <utility>

namespace {

constexpr CCmtParamsOps L_Ops{
    .header = {.Class_ID = fCCmtParams_Class_ID_Function,
               .Class_Name = fCCmtParams_Class_Name_Function,
               .Delete = DeleteAs<CCmtParams, fDelete_CCmtParams_Function>,
               .Clone = CloneAs<CCmtParams, fClone_CCmtParams_Function>},
    .SetGuiName = fSetGuiName_Function,
    .GetGuiName = fGetGuiName_Function,
    .SetData = fSetData_Function,
};

}  // namespace

const CObjectOps *CCmtParams::Ops() { return &L_Ops.header; }

Owned<CCmtParams> CreateCmtParams(Owned<CString> &&name) {
  Owned<CCmtParams> params = NewObject<CCmtParams, OnNoMemory::Catalogue>();
  params->gui_name = std::move(name);
  return params;
}

int fCCmtParams_Class_ID_Function() { return CCmtParams::kClassId; }

const char *fCCmtParams_Class_Name_Function() { return CCmtParamsClassName; }

int fDelete_CCmtParams_Function(CCmtParams *params) {
  FreeObject(params);
  return 1;
}

Owned<CCmtParams> fClone_CCmtParams_Function(const CCmtParams *params) {
  return params == nullptr ? nullptr : CreateCmtParams(CloneOf(params->gui_name.get()));
}

int fSetGuiName_Function(CCmtParams *params, Owned<CString> &&name) {
  if (params == nullptr) return 0;
  // Kept on purpose: the old name is not deleted here; the caller gets it back.
  params->gui_name.swap(name);
  return 1;
}

int fSetData_Function(CCmtParams *params, Owned<CString> &&name) {
  return fSetGuiName_Function(params, std::move(name));
}

CString *fGetGuiName_Function(const CCmtParams *params) {
  return params == nullptr ? nullptr : params->gui_name.get();
}
