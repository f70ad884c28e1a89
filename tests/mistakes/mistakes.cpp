// One mistake a compilation, MISTAKE; tests/CMakeLists.txt says what the compiler must answer.

#include <framework_utility/imageio/image_writer.h>

#include <iostream>
#include <memory>
#include <string>

using namespace FrameworkUtility;

#define none 0
#define type_in_options 1
#define type_of_text 2
#define print_image 3
#define print_enumeration 4

#if MISTAKE == none
// What is not the library's prints as ever, and so does what has a text.
void print(const Error& error, const std::shared_ptr<Data>& data, Point point) {
  std::cout << error << UTTypeJPEG << UTType{"public.jpeg"} << point << std::string("text") << 'c'
            << data << data.get() << std::hex << std::endl;
}
#elif MISTAKE == type_in_options
const ImageWriteOptions options{.uti = "public.jpeg"};
#elif MISTAKE == type_of_text
bool isType(const UTType& type, const std::string& text) { return type == text; }
#elif MISTAKE == print_image
void print(const CGImage& image) { std::cout << image; }
#elif MISTAKE == print_enumeration
void print(UIImageOrientation orientation) { std::cout << orientation; }
#endif
