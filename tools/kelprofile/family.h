// What every family file builds its entry of the family table from: a
// record type with the library's read, save and release functions and a
// description of its fields. show, rewrite and write are the same for every
// family; a family file holds only its description and its checks.
#pragma once

#include <new>

#include "tool.h"

namespace tool {

// The defaults of a family's record: nothing to prepare before a fill,
// nothing to release, nothing to check beyond the fields themselves.
// A family's traits derive from it and give:
//   static int read(const char* path, Record& r);   the library's reader, 0 read
//   static int save(const char* path, Record& r);   the library's writer, 0 saved
//   static void describe(Fields& f, Record& r);     the fields, in order
template <class R>
struct RecordTraits {
    using Record = R;
    // Readies a cleared record for filling (throws bad_alloc).
    static void prepare(Record&) {}
    static void release(Record&) {}
    // Refuses, after a fill, what the fields allow one by one but a saved
    // file could not keep.
    static void check(Fields&, Record&) {}
};

// A record of a family, cleared, released with it.
template <class T>
class Held {
public:
    Held() : record_{} {}
    ~Held() { T::release(record_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    typename T::Record& operator*() { return record_; }

private:
    typename T::Record record_;
};

template <class T>
bool showRecord(const char* path, Fields& out) {
    Held<T> record;
    if (T::read(path, *record) != 0) return false;
    T::describe(out, *record);
    return true;
}

template <class T>
int rewriteRecord(const char* src, const char* dst) {
    Held<T> record;
    if (T::read(src, *record) != 0) return 1;
    return T::save(dst, *record);
}

template <class T>
int fillAndSave(Fields& from, const char* dst) {
    Held<T> record;
    T::prepare(*record);
    T::describe(from, *record);
    T::check(from, *record);
    return from.accepted() ? T::save(dst, *record) : 1;
}

// The entry of a family with a writer, known by its root element's name.
template <class T>
constexpr Family writable(const char* name, const char* root, bool gbk) {
    return {name,           root,    nullptr, nullptr, showRecord<T>, rewriteRecord<T>,
            fillAndSave<T>, nullptr, gbk};
}

// The entry of a family the library only reads: lint checks the file
// directly.
template <class T>
constexpr Family readOnly(const char* name, const char* root, void (*lint)(const xmlNode*, Lint&),
                          bool gbk) {
    return {name, root, nullptr, nullptr, showRecord<T>, nullptr, nullptr, lint, gbk};
}

// The families, defined in their own files.
extern const Family kProfiles;
extern const Family kCustomizations;
extern const Family kWebPlayerProjects;
extern const Family kTemporaryOptions;
extern const Family kOptionGroups;
extern const Family kProducts;
extern const Family kDvdMenus;

}  // namespace tool

namespace tool {

// A web-player project as the library holds it, made by the library
// (publish reads one too).
struct WebPlayerProjects : RecordTraits<KELProject*> {
    static void prepare(KELProject*& p) {
        if (!p && (createKELProject(&p), !p)) throw std::bad_alloc();
    }
    static int read(const char* path, KELProject*& p) {
        prepare(p);
        return openWebPlayerXmlFile(path, p);
    }
    static int save(const char* path, KELProject*& p) { return saveWebPlayerXmlFile(path, p); }
    static void release(KELProject*& p) { freeKELProject(&p); }
    static void describe(Fields& f, KELProject*& p);
};

}  // namespace tool
