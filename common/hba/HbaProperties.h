#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

// How the makers' tables read: a property, and the kind and the source of its value.
//
//     {"serialNumber", Kind::text<&hba_AdapterAttributes::SerialNumber>},
//
// A maker's subject holds what its values come from; `record` is the structure of the HBA API with most of it.

namespace tarn {

template <class Subject>
struct HbaCacheImpl::Property {
    const char *name; ///< of the static field that holds the descriptor
    jobject (*value)(HbaCacheImpl &, Subject &);
};

struct HbaCacheImpl::Kind {
    template <auto field, class Subject>
    static jobject text(HbaCacheImpl &hba, Subject &subject) {
        auto &characters = subject.record.*field;
        return hba.string(characters, static_cast<int>(sizeof characters));
    }
    template <auto field, class Subject>
    static jobject wwn(HbaCacheImpl &hba, Subject &subject) {
        return hba.wwnText(subject.record.*field);
    }
    /// 32 bits.
    template <auto field, class Subject>
    static jobject number(HbaCacheImpl &hba, Subject &subject) {
        return hba.uint32(subject.record.*field);
    }
    /// 64 bits.
    template <auto field, class Subject>
    static jobject counter(HbaCacheImpl &hba, Subject &subject) {
        return hba.uint64(subject.record.*field);
    }
    /// What that member makes of a code of the HBA API.
    template <jobject (HbaCacheImpl::*convert)(unsigned int), auto field, class Subject>
    static jobject code(HbaCacheImpl &hba, Subject &subject) {
        return (hba.*convert)(subject.record.*field);
    }

    template <class Subject>
    static jobject className(HbaCacheImpl &hba, Subject &subject) {
        return hba.nameOf(subject.cimClass);
    }
    template <class Subject>
    static jobject systemName(HbaCacheImpl &hba, Subject &) {
        return hba.hbaClassNames.getSystemName();
    }
    template <class Subject>
    static jobject systemClassName(HbaCacheImpl &hba, Subject &) {
        return hba.nameOf(hba.hbaClassNames.getComputerSystemClass());
    }
};

/// The values of an instance in the making. Java is asked for a property's descriptor, which knows the value's place,
/// before the value is made. Throws NoInstance when it has none.
class HbaCacheImpl::Values {
public:
    Values(HbaCacheImpl &cacheImpl, jobject valuesArray) : hba(cacheImpl), array(valuesArray) {
    }

    /// Sets the properties of the table, in its order; `fields` has as many slots.
    template <std::size_t rows, class Subject>
    void set(const StaticFields<rows> &fields, const std::array<Property<Subject>, rows> &table,
             Subject &subject) const {
        for (std::size_t row = 0; row < rows; ++row) {
            const jobject descriptor = needed(fields.value(row, table[row].name));
            set(descriptor, table[row].value(hba, subject));
        }
    }

    /// Sets one property. A null value says that it has none.
    void set(jobject descriptor, jobject value) const {
        jni::callVoid(hba.env, descriptor, hba.trProperty.meth_set(), array, value);
    }

    /// The three properties that name an instance to people.
    void setCaptions(const StaticFields<3> &fields, const std::string &text) const {
        static constexpr std::array<const char *, 3> names{"caption", "description", "elementName"};
        const jobject caption = jni::newString(hba.env, text.c_str());
        for (std::size_t row = 0; row < names.size(); ++row) {
            set(needed(fields.value(row, names[row])), caption);
        }
    }

    jobject object() const {
        return array;
    }

private:
    HbaCacheImpl &hba;
    jobject array;
};

template <class SetValues>
jobject HbaCacheImpl::makeInstance(jint capacity, jobject (HbaClassNames::*getClass)() const, SetValues setValues) {
    return makeInLocalFrame(env, capacity, [&] {
        const jobject cimClass = (hbaClassNames.*getClass)();
        const Values values(*this, needed(jni::callObject(env, needed(cimClass), trClass.meth_getDefaultValues())));
        setValues(cimClass, values);
        return trInstance.make(needed((hbaClassNames.*getClass)()), values.object());
    });
}

} // namespace tarn
