#include "drivers/GPUNames_linux.h"

#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

namespace {

constexpr const char *list = "1002  Advanced Micro Devices, Inc. [AMD/ATI]\n"
                             "\t73df  Navi 22 [Radeon RX 6700 XT]\n"
                             "8086  Intel Corporation\n"
                             "\t56a0  DG2 [Arc A770]\n";

/// A GPU whose numbers on the bus are in files of its own.
GPUDevice device(const MachineTree &tree, GPUDriver driver, const std::string &vendor,
                 const std::string &number)
{
    const std::string folder = "sys/devices/" + vendor + number;
    tree.write(folder + "/vendor", vendor + "\n");
    tree.write(folder + "/device", number + "\n");
    return {.driver = driver, .folder = tree.root() + '/' + folder};
}

} // namespace

/// Names of GPUs by the list of PCI devices.
class TestListedGPUNames : public QObject {
    Q_OBJECT

private slots:
    void areNumberedByMaker();
    void areThoseOfTheList_data();
    void areThoseOfTheList();
    void areWhatAMDCallsACard_data();
    void areWhatAMDCallsACard();
};

void TestListedGPUNames::areNumberedByMaker()
{
    const std::vector<GPUDevice> devices = {{.driver = GPUDriver::i915},
                                            {.driver = GPUDriver::nouveau},
                                            {.driver = GPUDriver::xe},
                                            {.driver = GPUDriver::amdgpu},
                                            {.driver = GPUDriver::nvidia}};
    QCOMPARE(numberedGPUNames(devices),
             (std::vector<std::string>{"Intel GPU 0", "NVIDIA GPU 0", "Intel GPU 1", "AMD GPU 0",
                                       "NVIDIA GPU 1"}));
    QVERIFY(numberedGPUNames({}).empty());
}

void TestListedGPUNames::areThoseOfTheList_data()
{
    QTest::addColumn<std::string>("place"); ///< Of the list; empty: there is none.
    QTest::addColumn<std::string>("number");
    QTest::addColumn<std::string>("expected");
    const std::string known = "0x73df";
    QTest::newRow("listed") << std::string("usr/share/hwdata/pci.ids") << known
                            << std::string("AMD Radeon RX 6700 XT");
    QTest::newRow("in the other place")
        << std::string("usr/share/misc/pci.ids") << known << std::string("AMD Radeon RX 6700 XT");
    QTest::newRow("no list") << std::string() << known << std::string("AMD GPU 0");
    QTest::newRow("not in the list") << std::string("usr/share/hwdata/pci.ids")
                                     << std::string("0x1234") << std::string("AMD GPU 0");
    QTest::newRow("no number") << std::string("usr/share/hwdata/pci.ids") << std::string("Radeon")
                               << std::string("AMD GPU 0");
}

void TestListedGPUNames::areThoseOfTheList()
{
    QFETCH(std::string, place);
    QFETCH(std::string, number);
    QFETCH(std::string, expected);
    const MachineTree tree;
    if (!place.empty())
        tree.write(place, list);
    const GPUDevice amd = device(tree, GPUDriver::amdgpu, "0x1002", number);
    const GPUDevice gone{.driver = GPUDriver::xe, .folder = tree.root() + "/gone"};
    QCOMPARE(gpuNames({amd, gone}, tree.root()),
             (std::vector<std::string>{expected, "Intel GPU 0"}));
    QVERIFY(gpuNames({}, tree.root()).empty());
}

void TestListedGPUNames::areWhatAMDCallsACard_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("a name") << std::string("Radeon Pro W6800\n")
                            << std::string("AMD Radeon Pro W6800");
    QTest::newRow("an empty line, as most cards have") << std::string("\n") << std::string();
    QTest::newRow("an empty file") << std::string() << std::string();
}

void TestListedGPUNames::areWhatAMDCallsACard()
{
    QFETCH(std::string, text);
    const MachineTree tree;
    const GPUDevice amd = device(tree, GPUDriver::amdgpu, "0x1002", "0x73df");
    QCOMPARE(amdProductName(amd), std::string()); // There is no such file.
    tree.write("sys/devices/0x10020x73df/product_name", text);
    QTEST(amdProductName(amd), "expected");
}

QTEST_GUILESS_MAIN(TestListedGPUNames)
#include "tst_ListedGPUNames.moc"
