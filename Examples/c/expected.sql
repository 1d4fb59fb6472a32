-- Ambiguous: 4 paths are equally cheap, and only the names of their joins decided, which is arbitrary.
--   Way out: To take candidate 2: --favour returns-sales --favour sales-store; candidate 3: --favour inventory-store
SELECT returns.return_key AS "returns.return_key",
       returns.order_number AS "returns.order_number",
       returns.line_number AS "returns.line_number",
       store.store_key AS "store.store_key",
       store.store_name AS "store.store_name",
       store.city_key AS "store.city_key",
       category.category_key AS "category.category_key",
       category.category_name AS "category.category_name"
FROM returns
  INNER JOIN sales
    ON returns.order_number = sales.order_number AND returns.line_number = sales.line_number
  INNER JOIN product
    ON sales.product_key = product.product_key
  INNER JOIN store
    ON returns.store_key = store.store_key
  INNER JOIN subcategory
    ON product.subcategory_key = subcategory.subcategory_key
  INNER JOIN category
    ON subcategory.category_key = category.category_key;
