// A colour's keyed archive, both ways, beside libplist, which knows the list's bytes but nothing of
// classes, references or what is allowed: it is given the finished tree, and asked for its numbers.
//
//   archive_bench

#include <bench/paired.h>
#include <framework_utility/color/color.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

using namespace FrameworkUtility;

namespace {

const KvColor colour(0.25, 0.5, 0.75, 1);

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s did not read the colour\n", who);
  std::exit(1);
}

plist_t listOf(const char* one, const char* other) {
  plist_t list = plist_new_array();
  plist_array_append_item(list, plist_new_string(one));
  plist_array_append_item(list, plist_new_string(other));
  return list;
}

/// The tree of `colour`'s archive.
plist_t makeTree() {
  plist_t object = plist_new_dict();
  plist_dict_set_item(object, "R", plist_new_real(colour.red));
  plist_dict_set_item(object, "G", plist_new_real(colour.green));
  plist_dict_set_item(object, "B", plist_new_real(colour.blue));
  plist_dict_set_item(object, "A", plist_new_real(colour.alpha));
  plist_dict_set_item(object, "$class", plist_new_uid(2));
  plist_t record = plist_new_dict();
  plist_dict_set_item(record, "$classname", plist_new_string("FrameworkUtility.KvColor"));
  plist_dict_set_item(record, "$classes", listOf("FrameworkUtility.KvColor", "NSObject"));
  plist_t objects = plist_new_array();
  plist_array_append_item(objects, plist_new_string("$null"));
  plist_array_append_item(objects, object);
  plist_array_append_item(objects, record);
  plist_t top = plist_new_dict();
  plist_dict_set_item(top, "root", plist_new_uid(1));
  plist_t tree = plist_new_dict();
  plist_dict_set_item(tree, "$version", plist_new_uint(100000));
  plist_dict_set_item(tree, "$archiver", plist_new_string("NSKeyedArchiver"));
  plist_dict_set_item(tree, "$top", top);
  plist_dict_set_item(tree, "$objects", objects);
  return tree;
}

void writeTree(plist_t tree) {
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(tree, &bytes, &size);
  bench::keep(bytes);
  std::free(bytes);
}

void readTree(const Data& archive) {
  plist_t tree = nullptr;
  plist_from_bin(reinterpret_cast<const char*>(archive.data()),
                 static_cast<std::uint32_t>(archive.size()), &tree);
  std::uint64_t root = 0;
  plist_get_uid_val(plist_dict_get_item(plist_dict_get_item(tree, "$top"), "root"), &root);
  plist_t object =
      plist_array_get_item(plist_dict_get_item(tree, "$objects"), static_cast<std::uint32_t>(root));
  double blue = 0;
  for (const char* key : {"R", "G", "A", "B"}) {
    plist_get_real_val(plist_dict_get_item(object, key), &blue);
  }
  check(blue == colour.blue, "libplist");
  plist_free(tree);
}

}  // namespace

int main() {
  plist_t tree = makeTree();
  bench::compare("A colour's archive, written",
                 {{"here", [] { bench::keep(colour.archivedData()); }},
                  {"libplist, tree included",
                   [] {
                     plist_t made = makeTree();
                     writeTree(made);
                     plist_free(made);
                   }},
                  {"libplist, bytes alone", [&] { writeTree(tree); }}});
  plist_free(tree);

  const std::optional<Data> archive = colour.archivedData();
  check(archive.has_value(), "the library");
  bench::compare("A colour's archive, read", {{"here",
                                               [&] {
                                                 const auto read = KvColor::unarchivedData(archive);
                                                 check(read && read->blue == colour.blue,
                                                       "the library");
                                               }},
                                              {"libplist", [&] { readTree(*archive); }}});
}
