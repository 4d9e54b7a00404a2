// The documents: the models printed in them can be read by the editor as they stand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Controleur/Controleur.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/KLV.h"
#include "Vue/Dessin.h"
#include "common/Folder.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

/// The fenced blocks of a document that are models: all but the grammar.
std::vector<std::string> modelsIn(const std::string& document) {
    std::ifstream file(KLV_SOURCE_DIR "/docs/" + document);
    std::vector<std::string> models;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line == "```") {
            inside = !inside;
            if (inside) models.emplace_back();
        } else if (inside) {
            models.back() += line + "\n";
        }
    }
    std::erase_if(models, [](const std::string& model) { return model.rfind("file ", 0) == 0; });
    return models;
}

/// What the editor writes after reading `model`, its two sections line by line.
std::vector<std::string> rewritten(const std::string& model) {
    const Folder folder;
    Controleur controller(nullptr, new Modele::KLV, new Vue::Dessin(new EGD::EasyDrawingArea));
    EXPECT_TRUE(controller.parser(folder.write("printed.klv", model)));

    std::vector<std::string> lines;
    std::istringstream text(controller.toString());
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

TEST(Documents, PrintInTheGuideTheModelThatItBuilds) {
    const std::vector<std::string> models = modelsIn("user-guide.md");
    ASSERT_THAT(models, SizeIs(1));
    EXPECT_THAT(rewritten(models.front()), ElementsAre("q1(190, 120);", "q2(590, 120);", "q3(390, 300);",
                                                       "q1 -> q2 : coin -> box ;q1 : bean 3coin ;",
                                                       "q2 -> q3 : coin -> box ;", "q3 -> q1 : bean -> coffee ;"));
}

TEST(Documents, ShowTheFormatByModelsThatAreReadAndOneThatIsWrittenByteForByte) {
    const std::vector<std::string> models = modelsIn("file-format.md");
    ASSERT_THAT(models, SizeIs(2));
    EXPECT_THAT(rewritten(models[0]), ElementsAre("tube(500, 130);", "bind(240, 380);", "bind -> tube;",
                                                  "tube -> bind : E S -> ES ;tube : 2E 4S ;"));

    std::string written;
    for (const std::string& line : rewritten(models[1])) written += line + "\n";
    EXPECT_EQ(written, models[1]);
}

}  // namespace
