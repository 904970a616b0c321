#pragma once

#include "common/hba/library/Limits.h"

namespace tarn {

/// What the walks over adapters share: where one is, and what it makes of failed calls and of counts. What they tell of
/// those is `Walk`'s own: tellRefused(call, status) and tellTooMany(what, count, maximum).
template <class Walk>
class AdapterWalk {
protected:
    /// Whether the call failed, which is told.
    template <class Call>
    bool refuses(const Call &call, HBA_STATUS status) {
        if (status != HBA_STATUS_OK) {
            static_cast<Walk &>(*this).tellRefused(call, status);
        }
        return status != HBA_STATUS_OK;
    }

    /// The count, or none, which is told, when it is out of all reason.
    template <class What>
    HBA_UINT32 believed(const What &what, HBA_UINT32 count, HBA_UINT32 maximum) {
        if (count > maximum) {
            static_cast<Walk &>(*this).tellTooMany(what, count, maximum);
        }
        return tarn::believed(count, maximum);
    }

    HBA_UINT32 index = 0; // of the adapter that the walk has come to
    HBA_HANDLE handle = 0;
};

} // namespace tarn
