// qxreg: shows and changes the registry.
#include <string>
#include <vector>

#include "platform.h"
#include "program.h"

int main(int count, char** arguments) {
    std::vector<std::string> texts = PrepareProgram(count, arguments);
    std::vector<char*> places;
    for (std::string& text : texts) {
        places.push_back(text.data());
    }
    places.push_back(nullptr);
    return RunProgram(static_cast<int>(texts.size()), places.data());
}
