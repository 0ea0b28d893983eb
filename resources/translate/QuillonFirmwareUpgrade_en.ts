<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="zh_CN">
<context>
    <name>QuillonFirmwareUpgrade::FirmwareUpgradeWidget</name>
    <message>
        <source>--</source>
        <translation>--</translation>
    </message>
    <message>
        <source>前往官网下载&gt;&gt;</source>
        <translation>Download&gt;&gt;</translation>
    </message>
    <message>
        <source>升级中，请勿关闭设备...</source>
        <translation>Updating... Do not turn off the device.</translation>
    </message>
    <message>
        <source>升级失败！请拔插设备后重新开始升级</source>
        <translation>Update failed. Please replug the device and try again.</translation>
    </message>
    <message>
        <source>升级完成</source>
        <translation>Update Completed</translation>
    </message>
    <message>
        <source>固件升级</source>
        <translation>Firmware Update</translation>
    </message>
    <message>
        <source>固件版本过低，无法升级</source>
        <translation>Firmware version is too low to update.</translation>
    </message>
    <message>
        <source>当前版本</source>
        <translation>Current Version</translation>
    </message>
    <message>
        <source>待USB线接入图示口...</source>
        <translation>Connect to the indicated USB ports. </translation>
    </message>
    <message>
        <source>我已拔插设备，重新升级</source>
        <translation>I've replugged the device. Restart update.</translation>
    </message>
    <message>
        <source>新版本</source>
        <translation>New Version</translation>
    </message>
    <message>
        <source>新版概述</source>
        <translation>What's New</translation>
    </message>
    <message>
        <source>无新版固件</source>
        <translation>Firmware is up to 
date</translation>
    </message>
    <message>
        <source>正在检测OTG接入...</source>
        <translation>Detecting OTG connection...</translation>
    </message>
    <message>
        <source>正在检测USB接入...</source>
        <translation>Detecting USB connection...</translation>
    </message>
    <message>
        <source>立即升级</source>
        <translation>Update Now</translation>
    </message>
    <message>
        <source>请使用USB线连接图示USB口和电脑，
接入后自动完成升级。</source>
        <translation>Please use a USB cable to connect the illustrated 
USB port to the computer. The upgrade will be
 completed automatically upon connection.</translation>
    </message>
    <message>
        <source>请使用配件附带USB线接入图示DC-5V和OTG口,
继续完成升级。</source>
        <translation>To continue and complete the update, use the provided
USB cables to connect the DC-5V and OTG ports as
shown.</translation>
    </message>
    <message>
        <source>请使用配件附带USB线接入图示DC-5V和USB-C口，
开始固件升级。</source>
        <translation>To start the firmware update, use the provided USB
 cables to connect the DC-5V and USB-C ports as
shown.</translation>
    </message>
    <message>
        <source>请使用配件附带的USB线，接入并保持USB-C和OTG口
与电脑的连接。</source>
        <translation>Please use the USB cable provided with the 
accessory to connect and maintain the connection
 between the USB-C and OTG port to the computer.</translation>
    </message>
    <message>
        <source>需使用离线升级工具进行更新，</source>
        <translation>Update requires offline tool ,</translation>
    </message>
</context>
</TS>
