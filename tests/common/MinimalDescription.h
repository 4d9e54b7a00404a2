// A description of the main window with the widgets that the program asks for by name, and nothing else.
#pragma once

inline constexpr auto minimalDescription = R"(<?xml version="1.0" encoding="UTF-8"?>
<interface>
  <object class="GtkWindow" id="window1">
    <property name="default-width">600</property>
    <property name="default-height">500</property>
    <child>
      <object class="GtkBox" id="box">
        <property name="visible">True</property>
        <property name="orientation">vertical</property>
        <child>
          <object class="GtkMenuBar" id="menus">
            <property name="visible">True</property>
            <child><object class="GtkImageMenuItem" id="menu_new"/></child>
            <child><object class="GtkImageMenuItem" id="menu_open"/></child>
            <child><object class="GtkImageMenuItem" id="menu_save"/></child>
            <child><object class="GtkImageMenuItem" id="menu_savein"/></child>
            <child><object class="GtkMenuItem" id="menu_pref_bound"/></child>
            <child><object class="GtkMenuItem" id="menu_bound"/></child>
            <child><object class="GtkMenuItem" id="menu_bound_size"/></child>
            <child><object class="GtkMenuItem" id="menu_prefix_bound_size"/></child>
          </object>
        </child>
        <child>
          <object class="GtkToolbar" id="tools">
            <property name="visible">True</property>
            <child><object class="GtkToolButton" id="toolNew"/></child>
            <child><object class="GtkToolButton" id="toolOpen"/></child>
            <child><object class="GtkToolButton" id="toolSave"/></child>
            <child>
              <object class="GtkRadioToolButton" id="toolButtonSelect">
                <property name="active">True</property>
              </object>
            </child>
            <child>
              <object class="GtkRadioToolButton" id="toolButtonArc">
                <property name="group">toolButtonSelect</property>
              </object>
            </child>
            <child>
              <object class="GtkRadioToolButton" id="toolButtonNoeud">
                <property name="group">toolButtonSelect</property>
              </object>
            </child>
          </object>
        </child>
        <child>
          <object class="GtkDrawingArea" id="drawingarea1">
            <property name="visible">True</property>
            <property name="expand">True</property>
          </object>
        </child>
      </object>
    </child>
  </object>
</interface>
)";
