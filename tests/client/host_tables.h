#pragma once

/// What the host's own datasets and values are read from.
inline constexpr char hostTables[] = R"(pragma synchronous=off;
create table TAB_SITE(SITE_CODE text, SITE_NAME text, SUPERIOR_SITE text, TYPE text);
insert into TAB_SITE values ('010','北京','','中心'),('0101','北京朝阳','北京','直营网点'),('021','上海','','中心'),('9','O''Neill','','中心');
create table TAB_EMPLOYEE(EMPLOYEE_CODE text, EMPLOYEE_NAME text, OWNER_SITE text, DEPT_NAME text);
insert into TAB_EMPLOYEE values ('7','李四','北京',''),('8','张三','北京',''),('9','王五','上海','');
create table TAB_CUSTOMER(CUSTOMER_CODE text, OWNER_SITE text);
create table TAB_SCAN_TYPE(TYPE_CODE text, TYPE_NAME text);
create table TAB_CLASS(CLASS_CODE text, CLASS_NAME text);
create table TAB_GOODS_TYPE(GOODS_CODE text, GOODS_NAME text);
create table TAB_FAST_TYPE(TYPE_CODE text, TYPE_NAME text);
create table TAB_PROBLEM_TYPE(PROBLEM_CODE text, PROBLEM_NAME text);
create table TAB_QUOTE_DATA(QUOTE_CODE text);
create table TAB_AREA(AREA_CODE text, AREA_NAME text);
create table TAB_GLOBAL_VALUE(NAME text, VALUE text);
insert into TAB_GLOBAL_VALUE values ('CompanyName','测试速递'),('MainBill','^[0-9]{8}$');
)";
