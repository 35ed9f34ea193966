#include "cfeature.h"

#include <utility>

namespace {

constexpr CFeatureOps L_Ops{
    .header = {.Class_ID = fCFeature_Class_ID_Function,
               .Class_Name = fCFeature_Class_Name_Function,
               .Delete = DeleteAs<CFeature, fDelete_CFeature_Function>,
               .Clone = CloneAs<CFeature, fClone_CFeature_Function>},
    .Get_Translation = fGet_Translation_Function,
    .Set_Translation = fSet_Translation_Function,
    .Get_Default = fGet_Default_Function,
    .Set_Default = fSet_Default_Function,
    .Get_Type = fGet_Type_Function,
    .Set_Type = fSet_Type_Function,
    .Get_Options = fGet_Options_Function,
    .Set_Options = fSet_Options_Function,
};

template <class T>
T *Get(const CFeature *feature, Owned<T> CFeature::*member) {
  return feature == nullptr ? nullptr : (feature->*member).get();
}

template <class T>
int Set(CFeature *feature, Owned<T> CFeature::*member, const T *value) {
  if (feature == nullptr || value == nullptr) return 0;
  feature->*member = CloneOf(value);
  return 1;
}

// Clones one member; false when it is missing or cannot be cloned.
template <class T>
bool CloneMember(const CFeature *from, CFeature *to, Owned<T> CFeature::*member) {
  to->*member = CloneOf((from->*member).get());
  return to->*member != nullptr;
}

}  // namespace

const CObjectOps *CFeature::Ops() { return &L_Ops.header; }

Owned<CFeature> CreateFeature() { return NewObject<CFeature, OnNoMemory::Catalogue>(); }

int fCFeature_Class_ID_Function() { return CFeature::kClassId; }

const char *fCFeature_Class_Name_Function() { return CFeatureClassName; }

int fDelete_CFeature_Function(CFeature *feature) {
  FreeObject(feature);
  return 1;
}

Owned<CFeature> fClone_CFeature_Function(const CFeature *feature) {
  if (feature == nullptr) return nullptr;
  Owned<CFeature> clone = CreateFeature();
  const bool complete = CloneMember(feature, clone.get(), &CFeature::options) &&
                        CloneMember(feature, clone.get(), &CFeature::translation) &&
                        CloneMember(feature, clone.get(), &CFeature::default_option) &&
                        CloneMember(feature, clone.get(), &CFeature::type);
  return complete ? std::move(clone) : nullptr;
}

CString *fGet_Translation_Function(const CFeature *feature) {
  return Get(feature, &CFeature::translation);
}

int fSet_Translation_Function(CFeature *feature, const CString *value) {
  return Set(feature, &CFeature::translation, value);
}

CString *fGet_Default_Function(const CFeature *feature) {
  return Get(feature, &CFeature::default_option);
}

int fSet_Default_Function(CFeature *feature, const CString *value) {
  return Set(feature, &CFeature::default_option, value);
}

CString *fGet_Type_Function(const CFeature *feature) { return Get(feature, &CFeature::type); }

int fSet_Type_Function(CFeature *feature, const CString *value) {
  return Set(feature, &CFeature::type, value);
}

CHash *fGet_Options_Function(const CFeature *feature) { return Get(feature, &CFeature::options); }

int fSet_Options_Function(CFeature *feature, const CHash *value) {
  return Set(feature, &CFeature::options, value);
}
