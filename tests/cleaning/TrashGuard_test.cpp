// What may enter the trash, and which of several reasons is given.

#include "TrashFixture.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;

struct TrashGuardTest : TrashTest {};

TEST_F(TrashGuardTest, EachRefusalHasItsText) {
    EXPECT_STREQ(TrashError(Reason::outsideHome).what(),
                 "La ruta está fuera de tu carpeta de usuario.");
    EXPECT_STREQ(TrashError(Reason::protected_).what(),
                 "Es un elemento protegido (librería de Fotos, backup, correo).");
    EXPECT_STREQ(TrashError(Reason::notFound).what(), "El archivo ya no existe.");
    EXPECT_STREQ(TrashError(Reason::alreadyInTrash).what(), "Ya está en la Papelera de Velto.");
}

TEST_F(TrashGuardTest, FilesAndFoldersOfTheHomeAreAdmitted) {
    EXPECT_EQ(refusal(file("Downloads/a.dmg")), std::nullopt);
    EXPECT_EQ(refusal(folder("Library/Caches/com.example.app")), std::nullopt);
    EXPECT_EQ(refusal(file("at the top")), std::nullopt);
    EXPECT_EQ(refusal(file("..hidden/...")), std::nullopt);
}

TEST_F(TrashGuardTest, ALinkIsRefusedEvenWhenItStaysInsideTheHome) {
    folder("Documents/real");
    link("Documents/link", "real");
    EXPECT_EQ(refusal(home.path("Documents/link")), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path("Documents/link/")), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path("Documents/link/inside")), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path("Documents/real/inside")), std::nullopt);
}

TEST_F(TrashGuardTest, ALinkThatLeadsNowhereOrToItselfIsRefused) {
    EXPECT_EQ(refusal(link("dangling", "nowhere")), Reason::outsideHome);
    EXPECT_EQ(refusal(link("loop", "loop")), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path("loop/below")), Reason::outsideHome);
}

TEST_F(TrashGuardTest, TheHomeItselfIsRefused) {
    EXPECT_EQ(refusal(home.path()), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path() + "/"), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path() + "/."), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path("Documents/..")), Reason::outsideHome);
}

TEST_F(TrashGuardTest, EverythingOutsideTheHomeIsRefused) {
    TempHome elsewhere(TrashWorld::fastVolume());
    const std::string outside = elsewhere.text("a", "a").path();
    EXPECT_EQ(refusal(outside), Reason::outsideHome);
    EXPECT_EQ(refusal("/"), Reason::outsideHome);
    EXPECT_EQ(refusal("/etc/hosts"), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path() + "/../../etc/hosts"), Reason::outsideHome);
    EXPECT_EQ(refusal(home.path() + "x"), Reason::outsideHome) << "a home whose name begins alike";
}

TEST_F(TrashGuardTest, WhatIsNoAbsolutePathIsRefused) {
    file("a");
    for (const char* path : {"", "a", "./a", "../a", "~/a", " ", "."}) {
        EXPECT_EQ(refusal(path), Reason::outsideHome) << path;
    }
}

TEST_F(TrashGuardTest, AFurtherRootAdmitsWhatBeginsWithIt) {
    TempHome elsewhere(TrashWorld::fastVolume());
    const std::string path = elsewhere.text("extraordinary/a", "a").path();
    EXPECT_EQ(refusal(path), Reason::outsideHome);
    EXPECT_EQ(refusal(path, {"/nowhere"}), Reason::outsideHome);
    EXPECT_EQ(refusal(path, {"/nowhere", elsewhere.path()}), std::nullopt);
    // Plain text, no slash added.
    EXPECT_EQ(refusal(path, {elsewhere.path("extra")}), std::nullopt);
    EXPECT_EQ(refusal(elsewhere.path("extraordinary"), {elsewhere.path("extraordinary")}),
              std::nullopt);
    // Compared with the standardised path.
    EXPECT_EQ(refusal(elsewhere.path("extra/../other"), {elsewhere.path("extra")}),
              Reason::outsideHome);
}

TEST_F(TrashGuardTest, PhotosBackupsAndMailAreProtected) {
    EXPECT_EQ(refusal(file("Documents/MailMerge.docx")), Reason::protected_);
    for (const char* marker : {"Photos Library", "a.photoslibrary", "MobileSync", "Mail",
                               "Library/Messages", "CallHistory", "Library/Mail"}) {
        const std::string name = std::string("x/") + marker;
        EXPECT_EQ(refusal(file(name + "/below/a")), Reason::protected_) << marker;
        EXPECT_EQ(refusal(home.path(name)), Reason::protected_) << marker;
    }
    EXPECT_EQ(refusal(file("Documents/mail.txt")), std::nullopt) << "the case counts";
    EXPECT_EQ(refusal(file("Documents/Messages/a")), std::nullopt);
}

TEST_F(TrashGuardTest, WhatIsGoneIsNotFound) {
    EXPECT_EQ(refusal(home.path("gone")), Reason::notFound);
    EXPECT_EQ(refusal(home.path("no folder/gone")), Reason::notFound);
    EXPECT_EQ(refusal(file("a") + "/below a file"), Reason::notFound);
}

TEST_F(TrashGuardTest, NothingInTheTrashEntersItAgain) {
    const TrashItem item = trashed("Downloads/a");
    EXPECT_EQ(refusal(stored(item)), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(operationFolder(item.opID)), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(manifestPath()), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(layout.trashFolder), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(layout.trashFolder + "/"), Reason::alreadyInTrash);
    // Spelled so that only the standardised form begins with it.
    EXPECT_EQ(
        refusal(home.path("Downloads/../Library//Application Support/Velto/./Trash/") + item.opID),
        Reason::alreadyInTrash);
    EXPECT_EQ(refusal(home.path("Downloads/../Library//Application Support/Velto/Trash")),
              Reason::alreadyInTrash);
}

TEST_F(TrashGuardTest, WhatMerelyBeginsWithThePathOfTheTrashIsRefusedToo) {
    file("Library/Application Support/Velto/TrashOld/a");
    EXPECT_EQ(refusal(layout.trashFolder + "Old"), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(layout.trashFolder + "Old/a"), Reason::alreadyInTrash);
    // By the path as it is passed, and by nothing else.
    EXPECT_EQ(refusal(home.path("Library//Application Support/Velto/TrashOld/a")), std::nullopt);
}

TEST_F(TrashGuardTest, AFolderAroundTheTrashCannotGoIntoIt) {
    const TrashItem item = trashed("Downloads/a");
    const std::string around = home.path("Library/Application Support");
    EXPECT_NE(failure([&] { service.moveToTrash({around}, "wind"); }), 0);
    EXPECT_EQ(read(stored(item)), "content");
    EXPECT_EQ(service.items().size(), 1u);
    service.restore(item.id);
    EXPECT_EQ(read(home.path("Downloads/a")), "content");
}

TEST_F(TrashGuardTest, TheFirstReasonInOrderIsGiven) {
    trashed("first");
    const std::string protectedLink = link("Mail link", "nowhere");
    EXPECT_EQ(refusal(protectedLink), Reason::outsideHome) << "a link before protection";
    EXPECT_EQ(refusal("/nowhere/Mail"), Reason::outsideHome) << "the home before protection";
    EXPECT_EQ(refusal(home.path("gone Mail")), Reason::protected_) << "protection before existence";
    EXPECT_EQ(refusal(layout.trashFolder + "/gone"), Reason::notFound)
        << "existence before the trash";
    EXPECT_EQ(refusal(layout.trashFolder + "/Mail"), Reason::protected_)
        << "protection before the trash";
    link("Library/Application Support/Velto/Trash/link", "/etc");
    EXPECT_EQ(refusal(layout.trashFolder + "/link"), Reason::outsideHome)
        << "a link before the trash";
}

TEST_F(TrashGuardTest, AskingTouchesNothing) {
    const std::string path = file("Downloads/a");
    service.validate(path);
    EXPECT_EQ(read(path), "content");
    EXPECT_FALSE(exists(layout.trashFolder));
    EXPECT_FALSE(exists(layout.dataFolder));
}

}  // namespace
}  // namespace velto
