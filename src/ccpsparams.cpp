#include "ccpsparams.h"

namespace {

constexpr CCpsParamsOps L_Ops{
    .header = {.Class_ID = fCCpsParams_Class_ID_Function,
               .Class_Name = fCCpsParams_Class_Name_Function,
               .Delete = DeleteAs<CCpsParams, fDelete_CCpsParams_Function>,
               .Clone = CloneAs<CCpsParams, fClone_CCpsParams_Function>},
    .SetWidth = fSetWidth_Function,
    .GetWidth = fGetWidth_Function,
    .SetLength = fSetLength_Function,
    .GetLength = fGetLength_Function,
    .SetData = fSetData_Function,
};

}  // namespace

const CObjectOps *CCpsParams::Ops() { return &L_Ops.header; }

Owned<CCpsParams> CreateCpsParams(double width, double length) {
  Owned<CCpsParams> params = NewObject<CCpsParams, OnNoMemory::Catalogue>();
  params->width = width;
  params->length = length;
  return params;
}

int fCCpsParams_Class_ID_Function() { return CCpsParams::kClassId; }

const char *fCCpsParams_Class_Name_Function() { return CCpsParamsClassName; }

int fDelete_CCpsParams_Function(CCpsParams *params) {
  FreeObject(params);
  return 1;
}

Owned<CCpsParams> fClone_CCpsParams_Function(const CCpsParams *params) {
  return params == nullptr ? nullptr : CreateCpsParams(params->width, params->length);
}

int fSetWidth_Function(CCpsParams *params, double width) {
  if (params == nullptr) return 0;
  params->width = width;
  return 1;
}

double fGetWidth_Function(const CCpsParams *params) {
  return params == nullptr ? 0.0 : params->width;
}

int fSetLength_Function(CCpsParams *params, double length) {
  if (params == nullptr) return 0;
  params->length = length;
  return 1;
}

double fGetLength_Function(const CCpsParams *params) {
  return params == nullptr ? 0.0 : params->length;
}

int fSetData_Function(CCpsParams *params, double width, double length) {
  return fSetWidth_Function(params, width) != 0 && fSetLength_Function(params, length) != 0 ? 1 : 0;
}
