// What cannot be moved to another volume stays as it is, and nothing of it is left anywhere else.

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/MoveWorld.h"
#include "support/extended_attributes.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class RefusedMove : public MoveBetweenVolumes {
protected:
    void fillFolder() {
        source.text("item/a", "content");
        source.text("item/z/inside", "content");
    }
    void makeSocket(const std::string& name) {
        // The path in the address may be shorter than that of the home.
        const fs::path old = fs::current_path();
        fs::current_path(source.path());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof address.sun_path - 1);
        const Descriptor opened(socket(AF_UNIX, SOCK_STREAM, 0));
        const int bound =
            bind(opened.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        fs::current_path(old);
        ASSERT_EQ(bound, 0);
    }
    void expectRefused(int reason) {
        const std::string text = treeText(source.path("item"));
        EXPECT_EQ(move(), reason);
        EXPECT_EQ(treeText(source.path("item")), text);
        EXPECT_TRUE(isOnlyAtSource());
    }
};

TEST_F(RefusedMove, APipeStays) {
    ASSERT_EQ(mkfifo(source.path("item").c_str(), 0600), 0);
    expectRefused(EOPNOTSUPP);
}

TEST_F(RefusedMove, AFolderWithAPipeStaysWhole) {
    fillFolder();
    ASSERT_EQ(mkfifo(source.path("item/m").c_str(), 0600), 0);
    expectRefused(EOPNOTSUPP);
}

TEST_F(RefusedMove, ASocketStays) {
    makeSocket("item");
    expectRefused(EOPNOTSUPP);
}

TEST_F(RefusedMove, AFolderWithASocketStaysWhole) {
    fillFolder();
    makeSocket("item/m");
    expectRefused(EOPNOTSUPP);
}

TEST_F(RefusedMove, AFolderThatItsOwnerMayNotReadStaysWhole) {
    fillFolder();
    fs::create_directory(source.path("item/m"));
    setMode(source.path("item/m"), 0300);
    EXPECT_EQ(asOrdinaryUser({source.path(), target.path()}, [&] { return move(); }), EACCES);
    EXPECT_TRUE(isOnlyAtSource());
    EXPECT_EQ(source.read("item/z/inside"), "content");
    EXPECT_TRUE(source.exists("item/m"));
}

TEST_F(RefusedMove, AFileThatItsOwnerMayNotReadStays) {
    source.text("item", "content");
    setMode(source.path("item"), 0200);
    EXPECT_EQ(asOrdinaryUser({source.path(), target.path()}, [&] { return move(); }), EACCES);
    EXPECT_TRUE(isOnlyAtSource());
    EXPECT_EQ(fs::file_size(source.path("item")), 7u);
}

TEST_F(RefusedMove, AFolderOfSomebodyElseThatCouldNotBeEmptiedStays) {
    if (geteuid() != 0) GTEST_SKIP() << "only an administrator can give folders away";
    fillFolder();
    const int reason = asOrdinaryUser({source.path(), target.path()}, [&] { return 0; });
    ASSERT_EQ(reason, 0);
    ASSERT_EQ(chown(source.path("item/z").c_str(), 0, 0), 0);
    setMode(source.path("item/z"), 0755);
    EXPECT_EQ(asOrdinaryUser({}, [&] { return move(); }), EACCES);
    EXPECT_TRUE(isOnlyAtSource());
    EXPECT_EQ(source.read("item/z/inside"), "content");
}

TEST_F(RefusedMove, AFolderThatTakesNoNewNamesLeavesTheItemWhereItIs) {
    source.text("item/file", "content");
    target.folder("locked");
    setMode(target.path("locked"), 0500);
    const auto locked = files.openFolder(target.path("locked"), FolderPath::withoutLinks);
    EXPECT_EQ(asOrdinaryUser({source.path(), target.path()},
                             [&] {
                                 return reasonOf([&] {
                                     files.moveInSteps(*from, "item", *locked, "moved", scratch);
                                 });
                             }),
              EACCES);
    EXPECT_EQ(source.read("item/file"), "content");
    EXPECT_TRUE(fs::is_empty(target.path("locked")));
}

TEST_F(RefusedMove, AnItemInAFolderThatGivesNothingAwayStaysAndItsCopyGoes) {
    source.text("locked/item/file", "content");
    setMode(source.path("locked"), 0500);
    const auto locked = files.openFolder(source.path("locked"), FolderPath::withoutLinks);
    EXPECT_EQ(asOrdinaryUser({source.path(), target.path()},
                             [&] {
                                 return reasonOf([&] {
                                     files.moveInSteps(*locked, "item", *to, "moved", scratch);
                                 });
                             }),
              EACCES);
    EXPECT_EQ(source.read("locked/item/file"), "content");
    EXPECT_TRUE(fs::is_empty(target.path()));
}

class MovedByUser : public MoveBetweenVolumes {
protected:
    /// Everything is given to a user without rights over others' files.
    void giveAway() {
        ASSERT_EQ(asOrdinaryUser({source.path(), target.path()}, [] { return 0; }), 0);
    }
    int moveAsUser() {
        return asOrdinaryUser({}, [&] { return move(); });
    }
};

TEST_F(MovedByUser, ReadOnlyFoldersArriveAsTheyWere) {
    source.text("item/closed/inner/file", "content");
    setMode(source.path("item/closed/inner/file"), 0400);
    setMode(source.path("item/closed/inner"), 0500);
    setMode(source.path("item/closed"), 0555);
    setMode(source.path("item"), 0500);
    giveAway();
    const std::string text = sourceText();
    EXPECT_EQ(moveAsUser(), 0);
    EXPECT_EQ(targetText(), text);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(MovedByUser, AReadOnlyFileKeepsItsAttributesAndItsAccessList) {
    // Once the list is set, the owner may not write any more; that order is up to the volume.
    source.text("item", "content");
    if (!setExtendedAttribute(source.path("item"), "user.zz", "last")) {
        GTEST_SKIP() << "no attributes on this volume";
    }
    ASSERT_TRUE(setExtendedAttribute(source.path("item"), "user.aa", "first"));
    // Version 2; then tag, permissions and id: owner r, user 1000 r, group r, mask r, others r.
    const auto entry = [](char tag, const std::string& id) {
        return std::string{tag, 0, 4, 0} + id;
    };
    const std::string noId(4, '\xff');
    const std::string list = std::string("\x02\0\0\0", 4) + entry(1, noId) +
                             entry(2, std::string("\xe8\x03\0\0", 4)) + entry(4, noId) +
                             entry(16, noId) + entry(32, noId);
    const bool hasLists =
        setExtendedAttribute(source.path("item"), "system.posix_acl_access", list);
    if (!hasLists) setMode(source.path("item"), 0444);
    giveAway();
    const std::string text = sourceText();
    EXPECT_EQ(moveAsUser(), 0);
    EXPECT_EQ(targetText(), text);
    EXPECT_EQ(asOrdinaryUser({}, [&] { return moveBack(); }), 0);
    EXPECT_EQ(sourceText(), text);
}

TEST_F(MovedByUser, RightsOfAFormerOwnerDoNotBecomeRightsOfThisOne) {
    if (geteuid() != 0) GTEST_SKIP() << "only an administrator can give files away";
    source.text("item", "content");
    giveAway();
    ASSERT_EQ(chown(source.path("item").c_str(), 0, 0), 0);
    setMode(source.path("item"), 06755);
    EXPECT_EQ(asOrdinaryUser({}, [&] { return move(); }), 0);
    struct stat status {};
    ASSERT_EQ(lstat(target.path("moved").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0755u);
}

TEST_F(MovedByUser, TheGroupStaysWhereOnlyTheOwnerCannot) {
    class OwnerRefused final : public FileCalls {
    public:
        int changeOwner(int file, uid_t user, gid_t group) override {
            if (user != static_cast<uid_t>(-1)) {
                errno = EPERM;
                return -1;
            }
            return FileCalls::changeOwner(file, user, group);
        }
    } refused;
    PosixFileManager mover(refused);
    source.text("item", "content");
    if (chown(source.path("item").c_str(), 1234, 2345) != 0) GTEST_SKIP() << "not allowed";
    setMode(source.path("item"), 06755);
    mover.moveInSteps(*from, "item", *to, "moved", scratch);
    struct stat status {};
    ASSERT_EQ(lstat(target.path("moved").c_str(), &status), 0);
    EXPECT_EQ(status.st_gid, 2345u);
    EXPECT_EQ(status.st_mode & 07777u, 0755u);
}

}  // namespace
}  // namespace velto
