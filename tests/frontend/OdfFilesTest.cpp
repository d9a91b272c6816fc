#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

TEST(Crc, CheckValuesOfTheCcittFalseSet) {
  unsigned char digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(postblend::Algorithm::crc_cal_by_bit(digits, 9), 0x29B1u);
  EXPECT_EQ(postblend::Algorithm::crc_cal_by_bit(digits, 0), 0xFFFFu);
}

using OdfFiles = FeTest;
constexpr const char* kOdf = "/mnt/vendor/persist/display/Loading_ON_1_max.odf";

TEST_F(OdfFiles, SealedImageIsAcceptedAndEveryFlippedBitRejected) {
  const std::string good = bytesOf(makeOdf(kPanel, 500, 2.2));
  root.write(kOdf, good);
  Odf odf{};
  ASSERT_EQ(fe.readODF(odf, kOdf), 0);
  EXPECT_EQ(std::memcmp(&odf, good.data(), 510), 0);
  EXPECT_TRUE(log.has("1-readODF: open " + std::string(kOdf)));

  // Every single-bit error changes the checksum; the reader is tried on a spread of them.
  int accepted = 0;
  for (size_t bit = 0; bit < 510 * 8; ++bit) {
    std::string bad = good;
    bad[bit / 8] = static_cast<char>(bad[bit / 8] ^ (1 << (bit % 8)));
    Odf image, sealed;
    std::memcpy(&image, bad.data(), 510);
    sealed = image;
    seal(sealed);
    accepted += sealed.crc == image.crc;
    if (bit % 29 == 0 || bit >= 508 * 8) {
      root.write(kOdf, bad);
      Odf fresh{};
      accepted += fe.readODF(fresh, kOdf) == 0;
    }
  }
  EXPECT_EQ(accepted, 0);
}

TEST_F(OdfFiles, MissingShortAndLongFiles) {
  Odf odf{};
  EXPECT_EQ(fe.readODF(odf, kOdf), -1);
  EXPECT_TRUE(log.has("1-readODF: open " + std::string(kOdf) + " failed!"));
  root.write(kOdf, "");  // fresh record: stored 0 against the CRC of 508 zero bytes
  EXPECT_EQ(fe.readODF(odf, kOdf), -1);
  EXPECT_EQ(log.countContaining("1-readODF: CRC CHECK:0 ?= 0x"), 1) << log.dump();

  const std::string good = bytesOf(makeOdf(kP3, 300, 2.3));
  root.write(kOdf, good + "trailing bytes are ignored");
  EXPECT_EQ(fe.readODF(odf, kOdf), 0);
  root.write(kOdf, good.substr(0, 100));  // a consistent record survives a short read
  EXPECT_EQ(fe.readODF(odf, kOdf), 0);
}

TEST_F(OdfFiles, TargetNumbersDependOnGammaCorrectionAndStopAtBadOnes) {
  const char* path = "/odm/etc/PanelCorvane/t.txt";
  root.write(path, "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20\n");
  for (bool gc : {false, true}) {
    PanelCorvaneBase::sIsGammaCorrectionOn = gc;
    Target t;
    for (float& v : t.values) v = -1;
    ASSERT_EQ(fe.readTargetParm(t, path), 0);
    EXPECT_EQ(t.values[8], 9);
    EXPECT_EQ(t.values[19], gc ? 20 : -1);
  }
  root.write(path, "0.5 0.25 x 4 5");
  Target t;
  for (float& v : t.values) v = 7;
  EXPECT_EQ(fe.readTargetParm(t, path), 0);
  EXPECT_EQ(t.values[1], 0.25f);
  EXPECT_EQ(t.values[2] + t.values[3], 14);
  EXPECT_TRUE(log.has("1-readTargetParm: " + std::string(path)));
  EXPECT_EQ(fe.readTargetParm(t, "/odm/etc/none.txt"), -1);
  EXPECT_TRUE(log.has("1-readTargetParm: read /odm/etc/none.txt failed"));
}

TEST_F(OdfFiles, ErrorCheckFileIsReadWithoutInterpretation) {
  PanelCorvaneBase::ODFErrorCheck check{};
  check.values[31] = 5;
  EXPECT_EQ(fe.readODFCheck("/odm/etc/missing", &check), 0);
  root.write("/odm/etc/check.txt", "1.5 2.5\n-3");
  EXPECT_EQ(fe.readODFCheck("/odm/etc/check.txt", &check), 0);
  EXPECT_EQ(check.values[2], -3.0f);
  EXPECT_EQ(check.values[31], 5.0f);
}

}  // namespace
}  // namespace fetest
