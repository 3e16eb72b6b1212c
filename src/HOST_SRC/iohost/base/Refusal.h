// What can't be carried out is refused by an exception that says why.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// A request that can't be carried out; what() says what is wrong and names the field.
class CRefusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Refuse the request because of one field.
[[noreturn]] void Refuse(std::string_view field, std::string_view problem);

/// A text in quotation marks for messages; a long one is cut.
std::string Quoted(std::string_view text);
