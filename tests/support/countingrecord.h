// A record that counts how many of its class are alive.
#pragma once

#include "cobject.h"

struct CountingRecord : CObject {
  static constexpr int kClassId = 9001;
  static inline int alive = 0;

  static const CObjectOps *Ops();
  static int ClassId() { return kClassId; }
  static const char *ClassName() { return "CountingRecord"; }
  static int Delete(CountingRecord *record) {
    FreeObject(record);
    return 1;
  }
  static Owned<CountingRecord> Clone(const CountingRecord *record) { return New(record->number); }
  static Owned<CountingRecord> New(int number) {
    Owned<CountingRecord> record = NewObject<CountingRecord>();
    record->number = number;
    return record;
  }

  CountingRecord() { ++alive; }
  ~CountingRecord() { --alive; }
  CountingRecord(const CountingRecord &) = delete;
  CountingRecord &operator=(const CountingRecord &) = delete;

  int number = 0;
};

inline const CObjectOps *CountingRecord::Ops() {
  static constexpr CObjectOps kOps{.Class_ID = ClassId,
                                   .Class_Name = ClassName,
                                   .Delete = DeleteAs<CountingRecord, Delete>,
                                   .Clone = CloneAs<CountingRecord, Clone>};
  return &kOps;
}
